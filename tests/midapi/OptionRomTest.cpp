#include <algorithm>
#include <gmock/gmock.h>
#include <random>
#include <string_view>
#include <tuple>

#include "midapi/OptionRom.h"
#include "tests/midapi/RealRoms.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/RomParser.h"

namespace {

using ma::byteSum;
using ma::isPadding;
using ma::OptionRomImage;
using ma::parseRomChain;
using ma::RomBytes;
using ma::RomChain;
using ma::setLastImageBit;
using test::Bytes;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using utils::FirmwareType;

Bytes imageOf(const Bytes& rom, const OptionRomImage& image) {
  const auto first = rom.begin() + static_cast<std::ptrdiff_t>(image.offset);
  return Bytes(first, first + static_cast<std::ptrdiff_t>(image.length));
}

FirmwareType typeOf(const RomImage& image) {
  const RomChain chain = parseRomChain(RomBuilder().add(image).build());
  return chain.isValid() ? chain.images.at(0).type : FirmwareType::None;
}

// Returns a chain of three with that image in that place.
RomBuilder chainWith(const RomImage& kind, std::size_t index) {
  RomBuilder builder;
  for (std::size_t place = 0; place < 3; ++place) {
    builder.add(place == index ? kind : RomImage::efi().seed(9));
  }
  return builder;
}

TEST(OptionRom, ReadsWhatAChainHolds) {
  const Bytes rom = RomBuilder()
                        .add(RomImage::legacy().device(0x10EC, 0x8139).version(2, 17).units(3))
                        .add(RomImage::efi().device(0x10EC, 0x8168).version(5, 0).units(300))
                        .build();
  const RomChain chain = parseRomChain(rom);
  ASSERT_TRUE(chain.isValid()) << chain.defect->toString();
  ASSERT_EQ(chain.images.size(), 2U);
  EXPECT_EQ(chain.length, rom.size());

  const OptionRomImage& first = chain.images[0];
  EXPECT_EQ(std::tuple(first.offset, first.length, first.isLast), std::tuple(0U, 3U * 512, false));
  EXPECT_EQ(std::tuple(first.vendor, first.device), std::tuple(0x10EC, 0x8139));
  EXPECT_EQ(first.type, FirmwareType::Pxe);
  EXPECT_EQ(first.version.toString(), "2.17");

  const OptionRomImage& second = chain.images[1];
  EXPECT_EQ(std::tuple(second.offset, second.length, second.isLast),
            std::tuple(3U * 512, 300U * 512, true));
  EXPECT_EQ(second.type, FirmwareType::Uefi);
}

TEST(OptionRom, ReadsADataStructureThatFollowsTheHeaderAtOnce) {
  constexpr std::ptrdiff_t kUsual = 0x1C;
  constexpr std::ptrdiff_t kFirst = 0x1A;
  Bytes rom = RomBuilder().add(RomImage::efi().version(5, 1)).build();
  const auto header = rom.begin();
  std::copy(header + kUsual, header + kUsual + 0x18, header + kFirst);
  rom.at(0x18) = kFirst;
  rom.back() = static_cast<std::uint8_t>(rom.back() - byteSum(rom));
  const RomChain chain = parseRomChain(rom);
  ASSERT_TRUE(chain.isValid()) << chain.defect->toString();
  EXPECT_EQ(chain.images.at(0).version.toString(), "5.1");
}

TEST(OptionRom, TakesTheTypeOfALegacyImageFromItsProductString) {
  EXPECT_EQ(typeOf(RomImage::legacy().product("Maker iSCSI Boot")), FirmwareType::Iscsi);
  EXPECT_EQ(typeOf(RomImage::legacy().product("MAKER ISCSI BOOT")), FirmwareType::Iscsi);
  EXPECT_EQ(typeOf(RomImage::legacy().product("fcoe option")), FirmwareType::Fcoe);
  EXPECT_EQ(typeOf(RomImage::legacy().product("Maker CLP")), FirmwareType::Clp);
  EXPECT_EQ(typeOf(RomImage::legacy().product("Boot agent")), FirmwareType::Pxe);
  EXPECT_EQ(typeOf(RomImage::legacy().product("")), FirmwareType::Pxe);
  EXPECT_EQ(typeOf(RomImage::legacy().withoutPnp()), FirmwareType::Pxe);
}

TEST(OptionRom, TakesOtherCodeTypesWithoutAnImageType) {
  const RomChain chain = parseRomChain(RomBuilder().add(RomImage::ofCodeType(1)).build());
  ASSERT_TRUE(chain.isValid());
  EXPECT_EQ(chain.images[0].type, FirmwareType::None);
}

TEST(OptionRom, IsForItsOwnDeviceAndThoseOfItsList) {
  const RomChain chain =
      parseRomChain(RomBuilder().add(RomImage::legacy().deviceList({0x1000, 0x1042})).build());
  ASSERT_TRUE(chain.isValid());
  const OptionRomImage& image = chain.images[0];
  EXPECT_THAT(image.deviceList, ElementsAre(0x1000, 0x1042));
  EXPECT_TRUE(image.isFor(0x1AF4, 0x1041));
  EXPECT_TRUE(image.isFor(0x1AF4, 0x1042));
  EXPECT_FALSE(image.isFor(0x1AF4, 0x1043));
  EXPECT_FALSE(image.isFor(0x10EC, 0x1041));
  EXPECT_FALSE(image.isFor(0x10EC, 0x1042));
}

TEST(OptionRom, AcceptsPaddingBehindTheLastImageOnly) {
  const auto withTrailing = [](std::uint8_t value) {
    return RomBuilder().add(RomImage::efi()).trailing(700, value);
  };
  EXPECT_EQ(parseRomChain(withTrailing(0x00).build()).length, 1024U);
  EXPECT_EQ(parseRomChain(withTrailing(0xFF).build()).length, 1024U);
  EXPECT_THAT(parseRomChain(withTrailing(0x55).build()).defect->toString(),
              HasSubstr("image 1 at 0x400: bytes follow the last image"));
  EXPECT_FALSE(parseRomChain(withTrailing(0x00).trailing(1, 0xFF).build()).isValid());
}

TEST(OptionRom, BeginsWithItsSignature) {
  EXPECT_TRUE(ma::isOptionRom(Bytes({0x55, 0xAA})));
  EXPECT_FALSE(ma::isOptionRom(Bytes({0x55})));
  EXPECT_FALSE(ma::isOptionRom(Bytes({0xAA, 0x55})));
  EXPECT_FALSE(ma::isOptionRom(Bytes({0x55, 0x55})));
  EXPECT_FALSE(ma::isOptionRom({}));
}

TEST(OptionRom, RefusesBlankAndEmptyInput) {
  EXPECT_THAT(parseRomChain({}).defect->toString(), HasSubstr("there are no bytes"));
  EXPECT_FALSE(parseRomChain(Bytes(4096, 0xFF)).isValid());
  EXPECT_FALSE(parseRomChain(Bytes(4096, 0x00)).isValid());
}

TEST(OptionRom, RefusesEveryTruncation) {
  const Bytes rom = RomBuilder().add(RomImage::legacy()).add(RomImage::efi()).build();
  for (std::size_t size = 0; size < rom.size(); ++size) {
    const Bytes truncated(rom.begin(), rom.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_FALSE(parseRomChain(truncated).isValid()) << size;
    ASSERT_FALSE(test::parseRom(truncated).isValid()) << size;
  }
}

TEST(OptionRom, RefusesAChainWithoutALastImage) {
  const Bytes rom = chainWith(RomImage::legacy(), 2).damage(2, RomDamage::NoLastBit).build();
  EXPECT_THAT(parseRomChain(rom).defect->toString(),
              HasSubstr("image 2 at 0x800: no image follows, but the last-image bit is not set"));
  EXPECT_FALSE(test::parseRom(rom).isValid());
}

TEST(OptionRom, RefusesALastImageBeforeTheEnd) {
  for (std::size_t index : {0U, 1U}) {
    const Bytes rom =
        chainWith(RomImage::legacy(), index).damage(index, RomDamage::EarlyLastBit).build();
    EXPECT_THAT(parseRomChain(rom).defect->toString(),
                HasSubstr("bytes follow the last image that are neither"));
    EXPECT_EQ(parseRomChain(rom).defect->image, index + 1);
    EXPECT_FALSE(test::parseRom(rom).isValid());
  }
}

TEST(OptionRom, SurvivesExpansionHeadersInARing) {
  Bytes rom = RomBuilder().add(RomImage::legacy().product("iSCSI")).build();
  rom[0x46] = 0x40;  // the $PnP header's next header is itself
  rom[0x49] = static_cast<std::uint8_t>(rom[0x49] - 0x40);
  EXPECT_TRUE(parseRomChain(rom).isValid());
}

TEST(OptionRom, FindsThePnpHeaderBehindAnotherExpansionHeader) {
  Bytes rom = RomBuilder().add(RomImage::legacy().product("iSCSI")).build();
  const Bytes other = {'$', 'A', 'B', 'C', 1, 1, 0x40, 0};
  std::copy(other.begin(), other.end(), rom.begin() + 0xE0);
  rom[0x1A] = 0xE0;
  rom.back() = static_cast<std::uint8_t>(rom.back() - byteSum(rom));
  const RomChain chain = parseRomChain(rom);
  ASSERT_TRUE(chain.isValid()) << chain.defect->toString();
  EXPECT_EQ(chain.images[0].type, FirmwareType::Iscsi);
}

TEST(OptionRom, EndsAProductStringWhereItsImageEnds) {
  constexpr std::size_t kLength = 1024;
  Bytes rom = RomBuilder().add(RomImage::legacy()).add(RomImage::legacy()).build();
  const auto put = [&rom](std::size_t at, std::string_view text) {
    std::copy(text.begin(), text.end(), rom.begin() + static_cast<std::ptrdiff_t>(at));
  };
  const auto takeSumInto = [&rom](std::size_t at, std::size_t first, std::size_t length) {
    rom[at] = static_cast<std::uint8_t>(rom[at] - byteSum(RomBytes(rom).subspan(first, length)));
  };
  put(kLength - 4, "Boot");
  put(kLength + 3, "iSCSI");
  rom[0x50] = 0xFC;  // the product string of the $PnP header
  rom[0x51] = 0x03;
  takeSumInto(0x49, 0x40, 0x20);
  takeSumInto(0x1F0, 0, kLength);
  takeSumInto(2 * kLength - 1, kLength, kLength);
  const RomChain chain = parseRomChain(rom);
  ASSERT_TRUE(chain.isValid()) << chain.defect->toString();
  EXPECT_EQ(chain.images[0].type, FirmwareType::Pxe);
}

// Returns the type of an image whose $PnP header stands behind so many others.
FirmwareType typeBehind(std::size_t others) {
  constexpr std::size_t kFirst = 0x1F0;
  Bytes rom = RomBuilder().add(RomImage::legacy().product("iSCSI")).build();
  rom[0x1A] = kFirst & 0xFFU;
  rom[0x1B] = kFirst >> 8U;
  for (std::size_t i = 0; i < others; ++i) {
    const std::size_t next = i + 1 < others ? kFirst + 8 * (i + 1) : 0x40;
    const Bytes other = {'$',
                         'A',
                         'B',
                         'C',
                         1,
                         1,
                         static_cast<std::uint8_t>(next & 0xFFU),
                         static_cast<std::uint8_t>(next >> 8U)};
    std::copy(other.begin(), other.end(),
              rom.begin() + kFirst + static_cast<std::ptrdiff_t>(8 * i));
  }
  rom.back() = static_cast<std::uint8_t>(rom.back() - byteSum(rom));
  return parseRomChain(rom).images.at(0).type;
}

TEST(OptionRom, FollowsSixtyFourExpansionHeadersAndNoMore) {
  EXPECT_EQ(typeBehind(63), FirmwareType::Iscsi);
  EXPECT_EQ(typeBehind(64), FirmwareType::Pxe);
}

struct DamageCase {
  RomDamage damage;
  bool isEfi;
  const char* reason;
};

void PrintTo(const DamageCase& damage, std::ostream* out) {
  *out << damage.reason;
}

class DamagedRom : public testing::TestWithParam<std::tuple<DamageCase, std::size_t>> {};

TEST_P(DamagedRom, IsRefusedWithItsReasonAndPlace) {
  const auto& [damage, index] = GetParam();
  RomBuilder builder = chainWith(damage.isEfi ? RomImage::efi() : RomImage::legacy(), index);
  ASSERT_TRUE(parseRomChain(builder.build()).isValid());

  const Bytes rom = builder.damage(index, damage.damage).build();
  const RomChain chain = parseRomChain(rom);
  ASSERT_FALSE(chain.isValid());
  EXPECT_THAT(chain.defect->toString(), HasSubstr(damage.reason));
  EXPECT_EQ(chain.defect->image, index);
  EXPECT_EQ(chain.defect->offset, index * 1024);
  EXPECT_THAT(chain.images, IsEmpty());
  EXPECT_EQ(chain.length, 0U);
  EXPECT_FALSE(test::parseRom(rom).isValid());
}

INSTANTIATE_TEST_SUITE_P(
    OptionRom, DamagedRom,
    testing::Combine(
        testing::Values(
            DamageCase{RomDamage::Signature, false, "no 55 AA signature"},
            DamageCase{RomDamage::PcirPointerOutside, false, "is 0xfff0, outside the image"},
            DamageCase{RomDamage::PcirPointerInHeader, false, "is 0x04, outside the image"},
            DamageCase{RomDamage::PcirSignature, true, "no \"PCIR\" signature at 0x1c"},
            DamageCase{RomDamage::PcirTooShort, true, "is 0x17 bytes long"},
            DamageCase{RomDamage::PcirEndsOutside, true, "ends outside the image"},
            DamageCase{RomDamage::LengthZero, true, "image length is 0"},
            DamageCase{RomDamage::LengthBeyondFile, true, "image length is 33553920 bytes"},
            DamageCase{RomDamage::HeaderLength, false, "header length is 3 blocks"},
            DamageCase{RomDamage::EfiSignature, true, "no EFI signature"},
            DamageCase{RomDamage::DeviceListOutside, false, "device list"},
            DamageCase{RomDamage::DeviceListUnended, true, "does not end inside"},
            DamageCase{RomDamage::PnpSum, false, "byte sum of the $PnP header at 0x40 is 0x01"},
            DamageCase{RomDamage::PnpTooShort, false, "$PnP header at 0x40 does not fit"},
            DamageCase{RomDamage::PnpOutside, false, "$PnP header at 0x40 does not fit"},
            DamageCase{RomDamage::ByteSum, false, "byte sum is 0x01, must be 0"},
            DamageCase{RomDamage::ByteSum, true, "byte sum is 0x01, must be 0"}),
        testing::Values(0U, 1U, 2U)));

// Random damage, some of it with the sums put right so that it gets past them. The parser of the
// tests has to come to the same judgement; the sanitizers watch the library's reads.
TEST(OptionRom, AgreesWithAnotherParserOnRandomDamage) {
  std::mt19937 random(20240611);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const Bytes sound = RomBuilder()
                          .add(RomImage::legacy().deviceList({0x1000, 0x1042}).units(1))
                          .add(RomImage::efi().units(1))
                          .build();
  std::size_t valid = 0;
  for (int round = 0; round < 6000; ++round) {
    Bytes rom = sound;
    for (std::size_t count = 1 + below(3); count > 0; --count) {
      // Most hits go to the headers, where the structures are.
      const std::size_t at = below(2) * 512 + (below(4) == 0 ? below(512) : below(0x100));
      rom[at] = static_cast<std::uint8_t>(below(3) == 0 ? 0xFF : below(256));
    }
    if (below(2) == 0) {
      for (std::size_t start : {0U, 512U}) {
        const RomBytes image = RomBytes(rom).subspan(start, 512);
        rom[start + 511] = static_cast<std::uint8_t>(rom[start + 511] - byteSum(image));
      }
    }
    if (below(8) == 0) {
      rom.resize(below(rom.size() + 1));
    }
    // An own allocation of exactly this size: a read behind its end is one that is seen.
    const Bytes exact(rom.begin(), rom.end());
    const RomChain chain = parseRomChain(exact);
    const test::ParsedRom judged = test::parseRom(exact);
    ASSERT_EQ(chain.isValid(), judged.isValid()) << round << ": " << judged;
    valid += chain.isValid() ? 1U : 0U;
    for (std::size_t index = 0; index < chain.images.size(); ++index) {
      const OptionRomImage& image = chain.images[index];
      ASSERT_EQ(image.type, judged.images[index].type) << round;
      ASSERT_EQ(image.deviceList, judged.images[index].deviceList) << round;
      Bytes bytes = imageOf(exact, image);
      if (setLastImageBit(bytes, image, !image.isLast)) {
        ASSERT_EQ(byteSum(bytes), 0) << round;
      }
    }
  }
  EXPECT_GT(valid, 300U);
}

TEST(OptionRom, SumsAnyNumberOfBytesAtAnyAlignment) {
  std::mt19937 random(7);
  Bytes bytes(600);
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
  for (std::size_t start = 0; start < 9; ++start) {
    unsigned expected = 0;
    for (std::size_t size = 0; start + size < bytes.size(); ++size) {
      ASSERT_EQ(byteSum(RomBytes(bytes).subspan(start, size)), expected & 0xFF);
      expected += bytes[start + size];
    }
  }
}

TEST(OptionRom, TellsPaddingFromContent) {
  EXPECT_TRUE(isPadding({}));
  EXPECT_TRUE(isPadding(Bytes(3, 0x00)));
  EXPECT_TRUE(isPadding(Bytes(3, 0xFF)));
  EXPECT_FALSE(isPadding(Bytes(3, 0x01)));
  EXPECT_FALSE(isPadding(Bytes{0x00, 0x00, 0xFF}));
}

class LastImageBit : public testing::Test {
 protected:
  void load(const RomImage& image) { load(RomBuilder().add(image).build()); }
  void load(const Bytes& rom) {
    m_rom = rom;
    const RomChain chain = parseRomChain(m_rom);
    ASSERT_TRUE(chain.isValid()) << chain.defect->toString();
    m_image = chain.images[0];
  }
  // Returns the positions that clearing the bit changed.
  std::vector<std::size_t> changesOfClearing() {
    Bytes changed = m_rom;
    EXPECT_TRUE(setLastImageBit(changed, m_image, false));
    EXPECT_EQ(byteSum(changed), 0);
    std::vector<std::size_t> positions;
    for (std::size_t at = 0; at < changed.size(); ++at) {
      if (changed[at] != m_rom[at]) {
        positions.push_back(at);
      }
    }
    return positions;
  }
  void expectRefusal() {
    Bytes changed = m_rom;
    EXPECT_FALSE(setLastImageBit(changed, m_image, false));
    EXPECT_EQ(changed, m_rom);
  }

  Bytes m_rom;
  OptionRomImage m_image;
};

TEST_F(LastImageBit, IsMadeUpForByTheFillerByteWhereThereIsOne) {
  load(RomImage::legacy().withFillerByte());
  EXPECT_THAT(changesOfClearing(), ElementsAre(0x06, 0x31));
}

TEST_F(LastImageBit, IsMadeUpForByTheLastByteBehindPadding) {
  load(RomImage::legacy());
  EXPECT_THAT(changesOfClearing(), ElementsAre(0x31, 0x3FF));
  load(RomImage::efi().padding(4, 0x00));
  EXPECT_THAT(changesOfClearing(), ElementsAre(0x31, 0x3FF));
}

TEST_F(LastImageBit, StaysWhereNoByteIsFree) {
  load(RomImage::legacy().padding(0, 0));
  expectRefusal();
  load(RomImage::legacy().padding(3, 0xFF));
  expectRefusal();
}

TEST_F(LastImageBit, StaysWhereTheLastByteEndsAnEmptyDeviceList) {
  Bytes rom = RomBuilder().add(RomImage::efi().padding(32, 0x00)).build();
  const std::size_t list = rom.size() - 2 - 0x1C;
  rom[0x24] = static_cast<std::uint8_t>(list & 0xFF);
  rom[0x25] = static_cast<std::uint8_t>(list >> 8);
  rom[0x28] = 3;
  rom.back() = 0;
  rom[0x110] = static_cast<std::uint8_t>(rom[0x110] - byteSum(rom));
  load(rom);
  expectRefusal();
}

// What is padding by its look may be the end of a text, which ends where a zero is, or the image.
TEST_F(LastImageBit, StaysWhereTheProductTextReachesIntoThePadding) {
  Bytes rom = RomBuilder().add(RomImage::legacy().padding(32, 0xFF)).build();
  const std::size_t product = rom.size() - 1 - 32 - 4;
  std::copy_n("Boot", 4, rom.begin() + static_cast<std::ptrdiff_t>(product));
  const auto movePointer = [&rom](std::size_t at, std::uint8_t value) {
    rom[0x49] = static_cast<std::uint8_t>(rom[0x49] - (value - rom[at]));
    rom[at] = value;
  };
  movePointer(0x50, static_cast<std::uint8_t>(product & 0xFF));
  movePointer(0x51, static_cast<std::uint8_t>(product >> 8));
  rom[0x110] = static_cast<std::uint8_t>(rom[0x110] - byteSum(rom));
  load(rom);
  EXPECT_EQ(m_image.type, FirmwareType::Pxe);
  expectRefusal();
}

TEST_F(LastImageBit, ChangesNothingThatIsAsWished) {
  load(RomImage::legacy().padding(0, 0));
  Bytes same = m_rom;
  EXPECT_TRUE(setLastImageBit(same, m_image, true));
  EXPECT_EQ(same, m_rom);
}

class RealRom : public testing::TestWithParam<const char*> {};

// The combined file is the legacy one, its bit cleared, and an EFI image: each way round.
TEST_P(RealRom, CombinedFileComesApartAndTogetherByteForByte) {
  const auto legacyFile = test::realRom(std::string("pxe-") + GetParam() + ".rom");
  const auto combinedFile = test::realRom(std::string("efi-") + GetParam() + ".rom");
  if (!legacyFile || !combinedFile) {
    GTEST_SKIP() << test::kNoRealRoms;
  }
  const RomChain combined = parseRomChain(*combinedFile);
  ASSERT_TRUE(combined.isValid()) << combined.defect->toString();
  ASSERT_EQ(combined.images.size(), 2U);
  EXPECT_EQ(combined.images[0].type, FirmwareType::Pxe);
  EXPECT_EQ(combined.images[1].type, FirmwareType::Uefi);
  EXPECT_EQ(combined.images[0].version.toString(), "0.1");
  EXPECT_THAT(combined.images[0].deviceList, ElementsAre(combined.images[0].device));

  Bytes legacy = imageOf(*combinedFile, combined.images[0]);
  ASSERT_TRUE(setLastImageBit(legacy, combined.images[0], true));
  EXPECT_TRUE(legacy == *legacyFile);

  Bytes joined = *legacyFile;
  ASSERT_TRUE(setLastImageBit(joined, parseRomChain(*legacyFile).images.at(0), false));
  const Bytes efi = imageOf(*combinedFile, combined.images[1]);
  joined.insert(joined.end(), efi.begin(), efi.end());
  EXPECT_TRUE(joined == *combinedFile);
}

INSTANTIATE_TEST_SUITE_P(OptionRom, RealRom, testing::Values("virtio", "rtl8139"));

}  // namespace
