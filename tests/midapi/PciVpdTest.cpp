#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/PciVpd.h"
#include "tests/support/VpdBuilder.h"

namespace {

using ma::parsePciVpd;
using ma::PciVpd;
using ma::VpdChecksum;
using ma::VpdField;
using test::VpdBuilder;
using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

std::vector<std::string> textsOf(const std::vector<VpdField>& fields) {
  std::vector<std::string> texts;
  texts.reserve(fields.size());
  for (const VpdField& field : fields) {
    texts.push_back(field.keyword + "=" + field.text);
  }
  return texts;
}

VpdBuilder wholeVpd() {
  return VpdBuilder()
      .name("Quad Port Adapter")
      .readOnly({{"PN", "AB-1234"},
                 {"EC", "C"},
                 {"SN", "00A1B2C3"},
                 {"MN", "1af4"},
                 {"V0", "4.50"},
                 {"V1", ""}},
                5)
      .readWrite({{"YA", "Rack 7"}, {"V2", "x"}}, 20);
}

std::string defectOf(const Bytes& bytes) {
  const PciVpd vpd = parsePciVpd(bytes);
  return vpd.isValid() ? "none" : vpd.defect->toString();
}

std::string defectOfRaw(const std::string& bytes) {
  return defectOf(Bytes(bytes.begin(), bytes.end()));
}

TEST(PciVpd, ReadsWhatTheMakerWrote) {
  const PciVpd vpd = parsePciVpd(wholeVpd().build());
  ASSERT_TRUE(vpd.isValid()) << vpd.defect->toString();
  EXPECT_EQ(vpd.productName, "Quad Port Adapter");
  EXPECT_EQ(vpd.partNumber(), "AB-1234");
  EXPECT_EQ(vpd.serialNumber(), "00A1B2C3");
  EXPECT_EQ(vpd.engineeringChange(), "C");
  EXPECT_EQ(vpd.manufactureId(), "1af4");
  EXPECT_THAT(textsOf(vpd.readOnly),
              ElementsAre("PN=AB-1234", "EC=C", "SN=00A1B2C3", "MN=1af4", "V0=4.50", "V1="));
  EXPECT_THAT(textsOf(vpd.readWrite), ElementsAre("YA=Rack 7", "V2=x"));
  EXPECT_EQ(vpd.checksum, VpdChecksum::Right);
}

TEST(PciVpd, LeavesEmptyWhatItDoesNotHold) {
  const PciVpd vpd = parsePciVpd(VpdBuilder().readOnlyWithoutChecksum({{"V0", "1"}}).build());
  ASSERT_TRUE(vpd.isValid()) << vpd.defect->toString();
  EXPECT_EQ(vpd.productName, "");
  EXPECT_EQ(vpd.serialNumber(), "");
  EXPECT_EQ(vpd.checksum, VpdChecksum::Missing);
  EXPECT_THAT(vpd.readWrite, IsEmpty());
}

TEST(PciVpd, TakesTheFirstOfTwoFieldsOfOneName) {
  const PciVpd vpd = parsePciVpd(VpdBuilder()
                                     .readOnly({{"SN", "first"}, {"SN", "second"}})
                                     .readWrite({{"PN", "written by anybody"}})
                                     .build());
  EXPECT_EQ(vpd.serialNumber(), "first");
  EXPECT_EQ(vpd.partNumber(), "");
}

TEST(PciVpd, MakesTextsFitForATerminal) {
  const PciVpd vpd = parsePciVpd(VpdBuilder()
                                     .name("Adapter \x1b[2J  ")
                                     .readOnly({{"SN", std::string("1\xff\0\0", 4)}})
                                     .build());
  ASSERT_TRUE(vpd.isValid()) << vpd.defect->toString();
  EXPECT_EQ(vpd.productName, "Adapter \\x1b[2J");
  EXPECT_EQ(vpd.serialNumber(), "1\\xff");
}

TEST(PciVpd, PassesOverOtherResourcesAndWhatFollowsTheEnd) {
  Bytes bytes = VpdBuilder()
                    .name("A")
                    .add(0x84, "other")
                    .raw(std::string("\x2A\x01\x02\x29\x01", 5))
                    .readOnly({{"SN", "1"}})
                    .build();
  bytes.insert(bytes.end(), 1000, 0xFF);
  const PciVpd vpd = parsePciVpd(bytes);
  ASSERT_TRUE(vpd.isValid()) << vpd.defect->toString();
  EXPECT_EQ(vpd.serialNumber(), "1");
}

TEST(PciVpd, KeepsWhatItReadOfDataWithAWrongChecksum) {
  Bytes bytes = VpdBuilder().name("A").readOnly({{"SN", "1234"}}).build();
  bytes[3] = 'B';
  const PciVpd vpd = parsePciVpd(bytes);
  ASSERT_FALSE(vpd.isValid());
  EXPECT_EQ(vpd.defect->toString(),
            "RV checksum at 0x11: the bytes up to it add up to 0x01, must be 0x00");
  EXPECT_EQ(vpd.checksum, VpdChecksum::Wrong);
  EXPECT_EQ(vpd.productName, "B");
  EXPECT_EQ(vpd.serialNumber(), "1234");
}

TEST(PciVpd, SaysThatAChecksumIsWrongThoughAnotherIsRight) {
  Bytes bytes = VpdBuilder().name("A").readOnly({{"SN", "1"}}).build();
  bytes.pop_back();
  bytes[3] = 'B';
  Bytes both =
      VpdBuilder().raw(std::string(bytes.begin(), bytes.end())).readOnly({{"PN", "2"}}).build();
  EXPECT_EQ(parsePciVpd(both).checksum, VpdChecksum::Wrong);
  EXPECT_EQ(parsePciVpd(both).partNumber(), "2");
}

TEST(PciVpd, RefusesEveryTruncation) {
  const Bytes bytes = wholeVpd().build();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(parsePciVpd({bytes.data(), size}).isValid()) << size;
  }
}

TEST(PciVpd, SaysWhatIsWrong) {
  EXPECT_EQ(defectOf({}), "tag at 0x0: takes 0x1 bytes, but 0x0 are left of the data");
  EXPECT_EQ(defectOf(Bytes(16, 0xFF)),
            "tag at 0x0: is 0xff, but the list begins with a product name (0x82) or a read-only "
            "area (0x90)");
  EXPECT_EQ(defectOfRaw({"\x82\xFF\xFF"
                         "A",
                         4}),
            "length at 0x1: is 0xffff, but 0x1 bytes are left of the data");
  EXPECT_EQ(defectOfRaw({"\x90\x05\0SN\x03"
                         "12\x78",
                         9}),
            "SN length at 0x5: is 0x3, but 0x2 bytes are left of the resource");
  EXPECT_EQ(defectOfRaw({"\x90\x02\0SN\x78", 6}),
            "SN length at 0x5: takes 0x1 bytes, but 0x0 are left of the resource");
  EXPECT_EQ(defectOfRaw({"\x90\x03\0s\x1b\0\x78", 7}),
            "keyword at 0x3: is 0x73 0x1b, must be two capital letters or digits");
  EXPECT_EQ(defectOfRaw({"\x90\x03\0RV\0\x78", 7}),
            "RV checksum at 0x6: takes 0x1 bytes, but 0x0 are left of the area");
  EXPECT_EQ(defectOfRaw({"\x82\x01\0A\x2C\x78", 6}),
            "tag at 0x4: is 0x4, but 0x1 bytes are left of the data");
}

TEST(PciVpd, HasKeywordsOfCapitalLettersAndDigits) {
  for (const std::string keyword : {"A0", "Z9", "0A", "9Z"}) {
    EXPECT_EQ(defectOf(VpdBuilder().readOnly({{keyword, "1"}}).build()), "none") << keyword;
  }
  for (const std::string keyword : {"A/", "A:", "A@", "A[", "/A", "aA", "A\xff"}) {
    EXPECT_NE(defectOf(VpdBuilder().readOnly({{keyword, "1"}}).build()), "none") << keyword;
  }
}

TEST(PciVpd, ReadsNothingOfAnAreaBehindItsChecksum) {
  const PciVpd vpd = parsePciVpd(VpdBuilder().name("A").readOnly({{"SN", "1"}}, 40).build());
  EXPECT_TRUE(vpd.isValid());
  EXPECT_THAT(textsOf(vpd.readOnly), ElementsAre("SN=1"));
}

}  // namespace
