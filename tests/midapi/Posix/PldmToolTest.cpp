// The two makers of packages, of which shells and tests in C++ have one each, make the same.

#include <gmock/gmock.h>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "midapi/PldmPackage.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"

namespace {

using test::Bytes;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmFile;
using test::PldmImage;
using test::ProgramResult;

const std::string kTool = QUORVEL_TEST_SOURCE_ROOT "/tests/support/make-pldm-package";  // NOLINT

class PldmTool : public testing::TestWithParam<std::uint8_t> {
 protected:
  [[nodiscard]] std::string path() const { return (m_directory.path() / "package").string(); }

  // Runs the tool with whatever the format can have.
  [[nodiscard]] ProgramResult run(const std::vector<std::string>& more = {}) const {
    const int format = GetParam();
    std::vector<std::string> arguments = {
        path(),
        "--fields",
        "--format",
        std::to_string(format),
        "--version",
        "Package 7",
        "--version-type",
        "utf-16",
        "--time",
        "2025-02-03T04:05:06.789-03:30",
        "--gap",
        "ffff",
        "--device",
        "vendor=1af4,device=1041,subvendor=1af4,subdevice=1,components=0+9",
        "--device",
        "iana=412,uuid=00112233-4455-6677-8899-aabbccddeeff,vendor-defined=Slot:0102,revision=3,"
        "descriptor=0x107:4142,flags=1,version=SET,version-type=utf-16be,data=070809,components=" +
            std::string(format >= 4 ? ",manifest=a0a1" : "")};
    for (int index = 0; index < 10; ++index) {
      arguments.insert(arguments.end(),
                       {"--component", "id=" + std::to_string(index) + ",size=100,fill=1" +
                                           std::to_string(index)});
    }
    arguments.insert(arguments.end(),
                     {"--component",
                      "class=11,stamp=0x70200,options=3,activation=0x30,hex=0102,version=7.2,"
                      "version-type=utf-16le" +
                          std::string(format >= 3 ? ",opaque=0506" : "")});
    if (format >= 2) {
      arguments.insert(arguments.end(),
                       {"--downstream", "vendor=1af4,stamp=0x301,version=3.1,components=2"});
    }
    arguments.insert(arguments.end(), more.begin(), more.end());
    return test::runProgram(kTool, arguments);
  }

  // Returns a builder of the same.
  [[nodiscard]] static PldmBuilder builder() {
    using namespace std::string_literals;
    PldmBuilder builder(GetParam());
    PldmDevice other = PldmDevice()
                           .descriptor(0x0001, {0x9C, 0x01, 0, 0})
                           .descriptor(0x0002, {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                                0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF})
                           .vendorDefined({"Slot"}, {1, 2})
                           .descriptor(0x0103, {3})
                           .descriptor(0x0107, {0x41, 0x42})
                           .options(1)
                           .version({"\0S\0E\0T"s, test::kPldmUtf16Be})
                           .packageData({7, 8, 9});
    builder
        .version({"\xFF\xFEP\0a\0c\0k\0a\0g\0e\0 \0"
                  "7\0"s,
                  test::kPldmUtf16})
        .releaseTime({0x2E, 0xFF, 0x08, 0x0A, 0x0C, 6, 5, 4, 3, 2, 0xE9, 0x07, 0})
        .gap({0xFF, 0xFF})
        .add(PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 1).takes({0, 9}))
        .add(other.manifest({0xA0, 0xA1}));
    for (std::uint8_t index = 0; index < 10; ++index) {
      const auto fill = static_cast<std::uint8_t>(0x10 + index);
      builder.add(PldmImage(Bytes(100, fill)).identifier(index));
    }
    builder.add(PldmImage({1, 2})
                    .classification(11)
                    .stamp(0x70200)
                    .options(3)
                    .activation(0x30)
                    .version({"7\0.\0"
                              "2\0"s,
                              test::kPldmUtf16Le})
                    .opaque({5, 6}));
    return builder.addDownstream(PldmDevice()
                                     .descriptor(0x0000, {0xF4, 0x1A})
                                     .minVersionStamp(0x0301)
                                     .version({"3.1"})
                                     .takes({2}));
  }

 private:
  test::TempDirectory m_directory;
};

// Where the tool says that the fields stand.
std::map<std::string, std::pair<std::size_t, std::size_t>> readPlaces(const std::string& listing) {
  std::map<std::string, std::pair<std::size_t, std::size_t>> places;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string offset;
    std::string name;
    std::size_t size = 0;
    words >> offset >> size >> name;
    places[name] = {std::stoul(offset, nullptr, 16), size};
  }
  return places;
}

TEST_P(PldmTool, MakesWhatTheBuilderMakes) {
  const ProgramResult result = run();
  ASSERT_EQ(result.exitStatus, 0) << result.errors;
  const PldmFile file = builder().build();
  EXPECT_TRUE(test::readBytes(path()) == file.bytes);
  std::map<std::string, std::pair<std::size_t, std::size_t>> expected;
  for (const auto& [name, field] : file.fields) {
    expected[name] = {field.offset, field.size};
  }
  EXPECT_EQ(readPlaces(result.output), expected);
}

TEST_P(PldmTool, MakesWhatTheLibraryReads) {
  ASSERT_EQ(run().exitStatus, 0);
  const ma::PldmPackage package = ma::parsePldmPackage(test::readBytes(path()));
  ASSERT_TRUE(package.isValid()) << package.defect->toString();
  EXPECT_EQ(package.version, "Package 7");
  EXPECT_EQ(package.releaseTime->toString(), "2025-02-03T04:05:06.789000-03:30");
  EXPECT_EQ(package.devices.at(1).setVersion, "SET");
  EXPECT_THAT(package.devices.at(0).components, testing::ElementsAre(0, 9));
  EXPECT_EQ(package.components.at(10).version, "7.2");
}

TEST_P(PldmTool, BreaksWhatTheBuilderBreaks) {
  const std::vector<std::pair<std::string, std::uint64_t>> broken = {
      {"devices[0].length", 0x1234}, {"components[3].location", 7}, {"headerChecksum", 0xABCD}};
  PldmBuilder breaking = builder();
  std::vector<std::string> arguments = {"--common-identifier", "--size-of-header-alone",
                                        "--bitmap-bits", "32"};
  for (const auto& [field, value] : broken) {
    breaking.breakField(field, value);
    arguments.insert(arguments.end(), {"--break", field + "=" + std::to_string(value)});
  }
  const ProgramResult result = run(arguments);
  ASSERT_EQ(result.exitStatus, 0) << result.errors;
  const PldmFile file =
      breaking.withCommonIdentifier().withSizeOfHeaderAlone().bitmapBits(32).build();
  EXPECT_TRUE(test::readBytes(path()) == file.bytes);
}

TEST_P(PldmTool, DamagesWhatTheChecksumsThenTell) {
  ASSERT_EQ(run({"--flip", "components[1].content+99"}).exitStatus, 0);
  PldmFile file = builder().build();
  file.bytes[file.offsetOf("components[1].content") + 99] ^= 0xFF;
  EXPECT_TRUE(test::readBytes(path()) == file.bytes);
  EXPECT_EQ(ma::parsePldmPackage(file.bytes).isValid(), GetParam() < 4);
  ASSERT_EQ(run({"--cut", "-1"}).exitStatus, 0);
  EXPECT_EQ(test::readBytes(path()).size(), file.bytes.size() - 1);
  EXPECT_FALSE(ma::parsePldmPackage(test::readBytes(path())).isValid());
}

INSTANTIATE_TEST_SUITE_P(EachFormat, PldmTool, testing::Values(1, 2, 3, 4),
                         [](const auto& chosen) { return std::to_string(chosen.param); });

TEST(PldmToolArguments, AreRefusedWithTheirFault) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "package").string();
  const std::pair<std::vector<std::string>, std::string> refused[] = {
      {{"--break", "devices[0].length=1"}, "the package has no field 'devices[0].length'"},
      {{"--break", "format"}, "'format' is not FIELD=NUMBER"},
      {{"--device", "vendro=1"}, "'vendro=1' in 'vendro=1' is none of vendor=, device="},
      {{"--device", "components=9"}, "the bitmap has no bit for component 9"},
      {{"--device", "stamp=1"}, "only downstream records have a stamp"},
      {{"--device", "manifest=00"}, "formats below 4 have no manifest"},
      {{"--downstream", "vendor=1"}, "format 1 has no downstream records"},
      {{"--component", "opaque=00"}, "formats below 3 have no opaque data"},
      {{"--component", "id=65536"}, "identifier has 2 bytes, too few for 0x10000"},
      {{"--component", "file=/no such"}, "No such file or directory: '/no such'"},
      {{"--version-type", "ebcdic"}, "no type of text is called 'ebcdic'"},
  };
  for (const auto& [arguments, problem] : refused) {
    std::vector<std::string> all = arguments;
    all.push_back(path);
    const ProgramResult result = test::runProgram(kTool, all);
    EXPECT_EQ(result.exitStatus, 2) << problem;
    EXPECT_THAT(result.errors, testing::StartsWith("make-pldm-package: "));
    EXPECT_THAT(result.errors, testing::HasSubstr(problem));
  }
}

}  // namespace
