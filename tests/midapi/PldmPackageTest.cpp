#include <gmock/gmock.h>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "midapi/PldmPackage.h"
#include "tests/support/PldmBuilder.h"

namespace {

using ma::isPldmPackage;
using ma::kernelRefusalOf;
using ma::parsePldmPackage;
using ma::PldmDescriptorType;
using ma::PldmPackage;
using test::Bytes;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmFile;
using test::PldmImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

constexpr std::uint8_t kFormats[] = {1, 2, 3, 4};

// Two components for one device, the second of them for another as well, and what else the format
// can have.
PldmBuilder wholePackage(std::uint8_t format) {
  PldmBuilder builder(format);
  PldmDevice device = PldmDevice(0x1AF4, 0x1041).subsystem(0x1AF4, 0x0001).takes({0, 1});
  PldmDevice other = PldmDevice(0x1AF4, 0x1042)
                         .vendorDefined({"Slot"}, {1, 2})
                         .takes({1})
                         .options(1)
                         .version({"SET-2.0"})
                         .packageData({7, 8, 9});
  if (format >= 4) {
    other.manifest({0xA0, 0xA1});
  }
  builder.add(device).add(other);
  if (format >= 2) {
    builder.addDownstream(
        PldmDevice(0x1AF4, 0x1050).takes({0}).version({"3.1"}).minVersionStamp(0x0301));
  }
  PldmImage second = PldmImage(Bytes(40, 0x22))
                         .identifier(6)
                         .version({"7.2.0"})
                         .classification(0x000B)
                         .stamp(0x70200)
                         .options(3)
                         .activation(0x30);
  if (format >= 3) {
    second.opaque({5, 6});
  }
  return builder.add(PldmImage(Bytes(100, 0x11)).version({"1.1.0"})).add(second);
}

std::string defectOf(const Bytes& bytes) {
  const PldmPackage package = parsePldmPackage(bytes);
  EXPECT_EQ(package.isValid(), package.headerEnd != 0);
  return package.isValid() ? "none" : package.defect->toString();
}

std::string defectOf(const PldmBuilder& builder) {
  return defectOf(builder.build().bytes);
}

std::string defectWith(const std::string& field, std::uint64_t value, std::uint8_t format = 4) {
  return defectOf(wholePackage(format).breakField(field, value));
}

class EachFormat : public testing::TestWithParam<std::uint8_t> {};

TEST_P(EachFormat, IsReadCompletely) {
  const PldmFile file = wholePackage(GetParam()).build();
  EXPECT_TRUE(isPldmPackage(file.bytes));
  const PldmPackage package = parsePldmPackage(file.bytes);
  ASSERT_TRUE(package.isValid()) << package.defect->toString();
  EXPECT_EQ(package.format, GetParam());
  EXPECT_EQ(package.version, "2026.11");
  EXPECT_EQ(package.releaseTime->toString(), "2026-11-21T18:04:05Z");
  EXPECT_EQ(package.headerEnd, file.offsetOf("components[0].content"));
  ASSERT_EQ(package.devices.size(), 2U);
  EXPECT_THAT(package.devices[0].components, ElementsAre(0, 1));
  EXPECT_FALSE(package.devices[0].goesOnAfterFailure());
  EXPECT_EQ(package.devices[0].setVersion, "1.0");
  EXPECT_THAT(package.devices[1].components, ElementsAre(1));
  EXPECT_TRUE(package.devices[1].goesOnAfterFailure());
  EXPECT_EQ(package.devices[1].setVersion, "SET-2.0");
  EXPECT_THAT(package.devices[1].packageData, ElementsAre(7, 8, 9));
}

TEST_P(EachFormat, HasDescriptorsInTheirOrder) {
  const PldmPackage package = parsePldmPackage(wholePackage(GetParam()).build().bytes);
  ASSERT_EQ(package.devices.size(), 2U);
  const auto& first = package.devices[0].descriptors;
  ASSERT_EQ(first.size(), 4U);
  EXPECT_EQ(first[0].type, PldmDescriptorType::PciVendor);
  EXPECT_EQ(first[0].toNumber(), 0x1AF4U);
  EXPECT_EQ(first[3].type, PldmDescriptorType::PciSubsystemDevice);
  EXPECT_EQ(first[3].toNumber(), 0x0001U);
  const auto& second = package.devices[1].descriptors;
  ASSERT_EQ(second.size(), 3U);
  EXPECT_EQ(second[2].type, PldmDescriptorType::VendorDefined);
  EXPECT_EQ(second[2].title, "Slot");
  EXPECT_THAT(second[2].data, ElementsAre(1, 2));
}

TEST_P(EachFormat, HasComponentsWhereTheyLie) {
  const PldmFile file = wholePackage(GetParam()).build();
  const PldmPackage package = parsePldmPackage(file.bytes);
  ASSERT_EQ(package.components.size(), 2U);
  const ma::PldmComponent& first = package.components[0];
  EXPECT_EQ(first.location, file.offsetOf("components[0].content"));
  EXPECT_EQ(first.size, 100U);
  EXPECT_EQ(first.identifier, 5);
  EXPECT_EQ(first.classification, 10);
  EXPECT_EQ(first.comparisonStamp, 0xFFFFFFFF);
  EXPECT_FALSE(first.isForced() || first.hasStamp());
  EXPECT_EQ(first.activation, 8);
  EXPECT_EQ(first.version, "1.1.0");
  const ma::PldmComponent& second = package.components[1];
  EXPECT_EQ(second.location, first.location + first.size);
  EXPECT_EQ(second.size, 40U);
  EXPECT_EQ(second.identifier, 6);
  EXPECT_EQ(second.classification, 11);
  EXPECT_EQ(second.comparisonStamp, 0x70200U);
  EXPECT_TRUE(second.isForced() && second.hasStamp());
  EXPECT_EQ(second.activation, 0x30);
  EXPECT_EQ(second.version, "7.2.0");
}

TEST_P(EachFormat, HasWhatOnlyLaterFormatsHave) {
  const PldmPackage package = parsePldmPackage(wholePackage(GetParam()).build().bytes);
  ASSERT_TRUE(package.isValid());
  EXPECT_EQ(package.downstreamDevices.size(), GetParam() >= 2 ? 1U : 0U);
  for (const ma::PldmRecord& record : package.downstreamDevices) {
    EXPECT_THAT(record.components, ElementsAre(0));
    EXPECT_EQ(record.minVersion, "3.1");
    EXPECT_EQ(record.setVersion, "");
    EXPECT_THAT(record.minVersionStamp, Optional(0x0301U));
    EXPECT_EQ(record.descriptors.size(), 2U);
  }
  EXPECT_EQ(package.components[1].opaqueData, GetParam() >= 3 ? Bytes({5, 6}) : Bytes());
  EXPECT_EQ(package.devices[1].referenceManifest, GetParam() >= 4 ? Bytes({0xA0, 0xA1}) : Bytes());
  EXPECT_EQ(package.payloadChecksum.has_value(), GetParam() >= 4);
}

TEST_P(EachFormat, MayHaveTheIdentifierOfTheFirst) {
  EXPECT_EQ(defectOf(wholePackage(GetParam()).withCommonIdentifier()), "none");
}

TEST_P(EachFormat, IsRefusedWhereverItIsCut) {
  const Bytes bytes = wholePackage(GetParam()).build().bytes;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    ASSERT_FALSE(parsePldmPackage({bytes.data(), size}).isValid()) << size;
  }
}

TEST_P(EachFormat, IsRefusedWithAnyByteOfTheHeaderChanged) {
  const PldmFile file = wholePackage(GetParam()).build();
  for (std::size_t at = 0; at < file.offsetOf("components[0].content"); ++at) {
    Bytes changed = file.bytes;
    changed[at] ^= 0x01;
    ASSERT_FALSE(parsePldmPackage(changed).isValid()) << at;
  }
}

// The checksum put right, so that what the fields say is all that can be wrong. Run with a
// sanitizer this shows that nothing else is read.
TEST_P(EachFormat, IsNeverReadBeyondItsBytes) {
  const PldmFile whole = wholePackage(GetParam()).build();
  int refused = 0;
  for (const auto& [field, place] : whole.fields) {
    for (const std::uint64_t value :
         {0x0ULL, 0x1ULL, 0x7FULL, 0xFFULL, 0xFFFFULL, 0x7FFFFFFFULL, 0xFFFFFFFFULL}) {
      const PldmFile file = wholePackage(GetParam()).breakField(field, value).build();
      const std::vector<std::uint8_t> exact(file.bytes.begin(), file.bytes.end());
      refused += parsePldmPackage(exact).isValid() ? 0 : 1;
    }
  }
  EXPECT_GT(refused, 50);
}

INSTANTIATE_TEST_SUITE_P(PldmPackage, EachFormat, testing::ValuesIn(kFormats),
                         [](const auto& chosen) { return std::to_string(chosen.param); });

TEST(PldmPackage, BeginsWithAnIdentifier) {
  EXPECT_FALSE(isPldmPackage({}));
  EXPECT_FALSE(isPldmPackage(Bytes(4096, 0x55)));
  EXPECT_EQ(defectOf(Bytes()), "identifier at 0x0: takes 0x10 bytes, but 0x0 are left of the file");
  EXPECT_EQ(defectOf(Bytes(4096, 0x55)), "identifier at 0x0: is no firmware package's");
  EXPECT_EQ(defectWith("format", 0), "format at 0x10: is 0x0, must be 0x1 to 0x4");
  EXPECT_EQ(defectWith("format", 5), "format at 0x10: is 0x5, must be 0x1 to 0x4");
  EXPECT_EQ(defectWith("format", 2, 3),
            "format at 0x10: is 0x2, but the identifier is another format's");
}

TEST(PldmPackage, IsTakenWithEitherMeaningOfItsHeaderSize) {
  const PldmFile file = wholePackage(4).withSizeOfHeaderAlone().build();
  const PldmPackage package = parsePldmPackage(file.bytes);
  ASSERT_TRUE(package.isValid()) << package.defect->toString();
  EXPECT_EQ(package.headerEnd, file.offsetOf("components[0].content"));
  EXPECT_THAT(defectOf(wholePackage(4).withSizeOfHeaderAlone().breakField("payloadChecksum", 1)),
              HasSubstr("payloadChecksum"));
}

TEST(PldmPackage, HasAHeaderThatFits) {
  EXPECT_EQ(defectWith("headerSize", 0x10, 1),
            "headerSize at 0x11: is 0x10, too small for any header");
  EXPECT_EQ(defectWith("headerSize", 0xFFFF, 1),
            "headerSize at 0x11: is 0xffff, but the file has only 0x149 bytes");
  EXPECT_THAT(defectWith("headerSize", 0x80, 1), HasSubstr("headerChecksum at 0x7c: is 0x"));
  EXPECT_EQ(defectWith("componentCount", 1, 1),
            "headerSize at 0x11: is 0xbd, but the header's fields end at 0x9e");
}

TEST(PldmPackage, HasAHeaderThatIsNeverTooSmallForItsFirstFields) {
  for (const std::uint8_t format : kFormats) {
    const std::size_t least = 0x13 + (format < 4 ? 4 : 8);
    EXPECT_THAT(defectWith("headerSize", least - 1, format), HasSubstr("too small for any header"));
    EXPECT_THAT(defectWith("headerSize", least, format),
                HasSubstr("headerChecksum at 0x13: is 0x"));
  }
}

TEST(PldmPackage, SaysThatItIsDamagedWhereTheHeaderChecksumIsWrong) {
  const PldmFile file = wholePackage(1).build();
  Bytes changed = file.bytes;
  changed[file.offsetOf("devices[0].length")] = 0xFF;
  EXPECT_THAT(defectOf(changed), HasSubstr("headerChecksum at 0x"));
  EXPECT_THAT(defectOf(changed), HasSubstr(": the file is damaged"));
  EXPECT_THAT(defectWith("headerChecksum", 0x530E592E, 1),
              HasSubstr(": is 0x530e592e, but the header's bytes have 0x"));
  for (const std::uint8_t format : kFormats) {
    const PldmFile broken = wholePackage(format).breakField("headerChecksum", 1).build();
    const auto defect = parsePldmPackage(broken.bytes).defect;
    ASSERT_TRUE(defect);
    EXPECT_EQ(defect->offset, broken.offsetOf("headerChecksum"));
  }
}

TEST(PldmPackage, ChecksComponentsInFormat4Alone) {
  for (const std::uint8_t format : kFormats) {
    const PldmFile file = wholePackage(format).build();
    Bytes changed = file.bytes;
    changed[file.offsetOf("components[1].content") + 7] ^= 0x10;
    if (format < 4) {
      EXPECT_EQ(defectOf(changed), "none");
    } else {
      EXPECT_THAT(defectOf(changed), HasSubstr("payloadChecksum at 0x"));
      EXPECT_THAT(defectOf(changed), HasSubstr(": the file is damaged"));
    }
  }
}

TEST(PldmPackage, TakesATimeThatIsNoneForNone) {
  const PldmPackage package =
      parsePldmPackage(wholePackage(1).releaseTime(Bytes(13, 0)).build().bytes);
  ASSERT_TRUE(package.isValid());
  EXPECT_FALSE(package.releaseTime);
}

TEST(PldmPackage, ReadsTextsOfEachType) {
  const auto versionOf = [](test::PldmText text) {
    return parsePldmPackage(wholePackage(1).version(std::move(text)).build().bytes).version;
  };
  EXPECT_EQ(versionOf({"1.2", test::kPldmUnknown}), "1.2");
  EXPECT_EQ(versionOf({"1.\xc3\xbc", test::kPldmAscii}), "1.\\xc3\\xbc");
  EXPECT_EQ(versionOf({"1.\xc3\xbc", test::kPldmUtf8}), "1.\xc3\xbc");
  EXPECT_EQ(versionOf({{"\xFE\xFF\0u", 4}, test::kPldmUtf16}), "u");
  EXPECT_EQ(versionOf({{"u\0\x1b\0", 4}, test::kPldmUtf16Le}), "u\\x1b");
  EXPECT_EQ(versionOf({{"\0u", 2}, test::kPldmUtf16Be}), "u");
}

TEST(PldmPackage, RefusesTypesOfTextsThatThereAreNot) {
  EXPECT_EQ(defectWith("versionType", 6), "versionType at 0x22: is 0x6, must be 0x0 to 0x5");
  EXPECT_THAT(defectWith("devices[1].setVersionType", 9), HasSubstr("is 0x9, must be"));
  EXPECT_THAT(defectWith("devices[1].descriptors[2].titleType", 0xFF), HasSubstr("is 0xff, must"));
  EXPECT_THAT(defectWith("downstream[0].minVersionType", 6),
              HasSubstr("downstream[0].minVersionType at 0x"));
  EXPECT_THAT(defectWith("components[1].versionType", 6),
              HasSubstr("components[1].versionType at 0x"));
}

TEST(PldmPackage, RefusesRecordsWhoseLengthIsNotThatOfTheirFields) {
  EXPECT_EQ(defectWith("devices[0].length", 1, 1),
            "devices[0].length at 0x2c: is 0x1, must be at least 0x2");
  EXPECT_EQ(defectWith("devices[0].length", 0xFFFF, 1),
            "devices[0].length at 0x2c: is 0xffff, but 0x8d bytes are left of the header");
  EXPECT_THAT(defectWith("devices[0].length", 0x10), HasSubstr("are left of the record"));
  EXPECT_THAT(defectWith("devices[0].descriptorCount", 3),
              HasSubstr("devices[0].length at 0x2c: is 0x2b, but the record's fields take 0x25"));
  EXPECT_THAT(defectWith("devices[0].descriptorCount", 5),
              HasSubstr("devices[0].descriptors[4].type at 0x"));
  EXPECT_THAT(defectWith("devices[1].packageDataLength", 0xFFFF),
              HasSubstr("devices[1].packageData at 0x"));
  EXPECT_THAT(defectWith("devices[1].manifestLength", 0xFFFFFFFF),
              HasSubstr("devices[1].manifest at 0x"));
  EXPECT_THAT(defectWith("devices[0].setVersionLength", 0xFF),
              HasSubstr("devices[0].setVersion at 0x"));
  EXPECT_THAT(defectWith("downstream[0].optionFlags", 0), HasSubstr("downstream[0]."));
}

TEST(PldmPackage, RefusesDescriptorsThatDoNotFit) {
  EXPECT_THAT(defectWith("devices[1].descriptors[2].length", 0x50),
              HasSubstr("devices[1].descriptors[2].length at 0x"));
  EXPECT_THAT(defectWith("devices[1].descriptors[2].length", 0x50),
              HasSubstr("bytes are left of the record"));
  EXPECT_THAT(defectWith("devices[1].descriptors[2].titleLength", 0x50),
              HasSubstr("devices[1].descriptors[2].title at 0x"));
  EXPECT_THAT(defectOf(wholePackage(1).add(PldmDevice().descriptor(0x0100, {1, 2, 3}))),
              HasSubstr("is 0x3, must be 0x2 for descriptors of type 0x100"));
  EXPECT_EQ(defectOf(wholePackage(1).add(PldmDevice().descriptor(0x4242, {1, 2, 3}))), "none");
}

TEST(PldmPackage, KnowsTheSizesOfDescriptors) {
  const std::pair<std::uint16_t, std::size_t> sizes[] = {
      {0x0000, 2}, {0x0001, 4}, {0x0002, 16}, {0x0003, 3}, {0x0004, 4}, {0x0100, 2},
      {0x0101, 2}, {0x0102, 2}, {0x0103, 1},  {0x0104, 4}, {0x0105, 4}};
  for (const auto& [type, size] : sizes) {
    const auto packageWith = [kind = type](std::size_t count) {
      return wholePackage(1).add(PldmDevice().descriptor(kind, Bytes(count, 1)));
    };
    EXPECT_EQ(defectOf(packageWith(size)), "none") << type;
    EXPECT_NE(defectOf(packageWith(size - 1)), "none") << type;
    EXPECT_NE(defectOf(packageWith(size + 1)), "none") << type;
  }
}

TEST(PldmPackage, RefusesBitsOfComponentsThatThereAreNot) {
  EXPECT_EQ(defectWith("devices[0].components", 0x07, 1),
            "devices[0].components at 0x37: has the bit of components[2], but the package has 2");
  EXPECT_THAT(defectWith("downstream[0].components", 0x80),
              HasSubstr("has the bit of components[7], but the package has 2"));
  EXPECT_THAT(defectWith("bitmapBits", 9), HasSubstr("is 0x9, must be a multiple of 0x8"));
  PldmBuilder many(1);
  for (int count = 0; count < 9; ++count) {
    many.add(PldmImage(Bytes(1, 0)));
  }
  EXPECT_EQ(defectOf(many), "none");
  EXPECT_EQ(defectOf(many.bitmapBits(8)), "bitmapBits at 0x20: is 0x8, too small for 9 components");
}

TEST(PldmPackage, TakesBitmapsThatAreLargerThanNeeded) {
  const PldmPackage package = parsePldmPackage(wholePackage(1).bitmapBits(1024).build().bytes);
  ASSERT_TRUE(package.isValid()) << package.defect->toString();
  EXPECT_THAT(package.devices[0].components, ElementsAre(0, 1));
}

TEST(PldmPackage, RefusesComponentsThatLieNowhere) {
  const PldmFile file = wholePackage(1).build();
  const std::uint64_t size = file.bytes.size();
  EXPECT_THAT(defectWith("components[0].location", 0xBC, 1),
              HasSubstr(": is 0xbc, inside the header, which ends at 0xbd"));
  EXPECT_THAT(defectWith("components[0].location", size + 1, 1),
              HasSubstr(": is 0x14a, outside the file, which ends at 0x149"));
  EXPECT_THAT(defectWith("components[1].size", 41, 1), HasSubstr("components[1].size at 0x"));
  EXPECT_THAT(defectWith("components[1].size", 41, 1),
              HasSubstr(": is 0x29, but only 0x28 bytes follow 0x121 in the file: is it cut off?"));
  EXPECT_THAT(defectWith("components[1].size", 0xFFFFFFFF, 1), HasSubstr("is 0xffffffff, but"));
  EXPECT_THAT(defectWith("components[1].size", 0, 1), HasSubstr("nothing to write"));
  EXPECT_THAT(defectWith("components[1].location", size, 1),
              HasSubstr("but only 0x0 bytes follow"));
}

TEST(PldmPackage, RefusesComponentsThatOverlap) {
  const PldmFile file = wholePackage(1).build();
  const std::uint64_t first = file.offsetOf("components[0].content");
  EXPECT_THAT(defectWith("components[1].location", first + 99, 1),
              HasSubstr("components[1].location at 0x"));
  EXPECT_THAT(defectWith("components[1].location", first + 99, 1),
              HasSubstr(": is 0x120, inside components[0], which ends at 0x121"));
  EXPECT_THAT(defectWith("components[0].size", 101, 1),
              HasSubstr(": is 0x121, inside components[0], which ends at 0x122"));
  EXPECT_THAT(defectWith("components[1].location", first, 1), HasSubstr(", inside components["));
}

TEST(PldmPackage, TakesComponentsInAnyOrderWithGaps) {
  const PldmBuilder builder = wholePackage(1).gap(Bytes(16, 0xFF));
  PldmFile file = builder.build();
  EXPECT_EQ(defectOf(file.bytes), "none");
  file.bytes.insert(file.bytes.end(), 100, 0xFF);
  EXPECT_EQ(defectOf(file.bytes), "none");
  const std::uint64_t first = file.offsetOf("components[0].content");
  EXPECT_EQ(defectOf(PldmBuilder(builder)
                         .breakField("components[0].location", first + 56)
                         .breakField("components[1].location", first)),
            "none");
}

TEST(PldmPackage, MayBeForNobody) {
  const PldmPackage package = parsePldmPackage(PldmBuilder(2).build().bytes);
  ASSERT_TRUE(package.isValid()) << package.defect->toString();
  EXPECT_THAT(package.devices, IsEmpty());
  EXPECT_THAT(package.components, IsEmpty());
}

TEST(PldmPackage, TellsWhetherTheKernelReadsIt) {
  for (const std::uint8_t format : kFormats) {
    const PldmPackage package = parsePldmPackage(wholePackage(format).build().bytes);
    ASSERT_TRUE(package.isValid());
    EXPECT_EQ(kernelRefusalOf(package), format == 1
                                            ? ""
                                            : "the package has format " + std::to_string(format) +
                                                  ", and the kernel takes format 1 alone");
  }
}

TEST(PldmPackage, HasNumbersOfUpToFourBytes) {
  const auto numberOf = [](Bytes data) {
    return ma::PldmDescriptor{PldmDescriptorType::Uuid, "", std::move(data)}.toNumber();
  };
  EXPECT_EQ(numberOf({}), 0U);
  EXPECT_EQ(numberOf({0x12}), 0x12U);
  EXPECT_EQ(numberOf({0x78, 0x56, 0x34, 0xF2}), 0xF2345678U);
  EXPECT_EQ(numberOf({1, 2, 3, 4, 5}), 0U);
}

TEST(PldmPackage, IsReadOfRandomHeadersWithoutHarm) {
  std::mt19937 random(1);
  for (int round = 0; round < 600; ++round) {
    PldmBuilder builder = wholePackage(2);
    const PldmFile file = builder.build();
    for (int count = 0; count < 3; ++count) {
      auto field = file.fields.begin();
      std::advance(field, random() % file.fields.size());
      builder.breakField(field->first, random());
    }
    const Bytes bytes = builder.build().bytes;
    const PldmPackage package = parsePldmPackage(bytes);
    for (const ma::PldmComponent& component : package.components) {
      ASSERT_LE(component.location + component.size, bytes.size());
    }
  }
}

}  // namespace
