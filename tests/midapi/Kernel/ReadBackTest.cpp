#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

#include "midapi/Kernel/ReadBack.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::FirmwareVersions;
using ma::FlashEntry;
using ma::ReadBack;
using ma::readBackRom;
using ma::readBackVersions;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using Verdict = ReadBack::Verdict;
using Versions = std::vector<FirmwareVersions>;

const FlashEntry kPackage{1, 2, {{"fw.undi", "1.0"}}, {{"fw.undi", "1.1"}}, {}};
const FlashEntry kContainer{1, 2, {{"fw.undi", "1.0"}}, {}, {}};  // which does not say its versions
const FlashEntry kOfSilentDriver{1, 2, {}, {{"fw.undi", "1.1"}}, {}};
constexpr ma::PciIds kIds{0x8086, 0x10D3, 0, 0};

Bytes rom(std::uint8_t minor) {
  return RomBuilder().add(RomImage::efi().device(0x8086, 0x10D3).version(1, minor)).build();
}

TEST(ReadBack, ComparesTheVersionsOfTheFile) {
  EXPECT_EQ(readBackVersions(kPackage, Versions{{"fw.undi", "1.0", "1.1"}}).verdict, Verdict::Same);
  const ReadBack other = readBackVersions(kPackage, Versions{{"fw.undi", "1.0", "1.0"}});
  EXPECT_EQ(other.verdict, Verdict::Different);
  EXPECT_EQ(other.text, "fw.undi is 1.0, and the file has 1.1");
}

TEST(ReadBack, SeesWhatTheDriverDoesNotTellAnyMore) {
  for (const FlashEntry& entry : {kPackage, kContainer}) {
    const ReadBack untold = readBackVersions(entry, Versions{{"fw.undi", "1.0", ""}});
    EXPECT_EQ(untold.verdict, Verdict::Untold);
    EXPECT_EQ(untold.text, "the version of fw.undi");
  }
}

TEST(ReadBack, SeesAFlashThatIsEmptyWhateverTheFileSays) {
  const ReadBack emptied = readBackVersions(kContainer, Versions{{"fw.undi", "1.0", "", true}});
  EXPECT_EQ(emptied.verdict, Verdict::Different);
  EXPECT_EQ(emptied.text, "there is no fw.undi in it any more");
}

TEST(ReadBack, ComparesNothingWhereNothingIsKnown) {
  EXPECT_EQ(readBackVersions(kContainer, Versions{{"fw.undi", "1.0", "1.1"}}).verdict,
            Verdict::NotCompared);
  EXPECT_EQ(readBackVersions(kOfSilentDriver, Versions{{"fw.undi", "1.0", ""}}).verdict,
            Verdict::NotCompared);
}

TEST(ReadBack, ComparesOptionRoms) {
  EXPECT_EQ(readBackRom(kIds, rom(2), rom(1), rom(2)).verdict, Verdict::Same);
  EXPECT_EQ(readBackRom(kIds, rom(2), rom(1), rom(3)).verdict, Verdict::Different);
  Bytes torn = rom(2);
  torn[100] ^= 1;
  const ReadBack damaged = readBackRom(kIds, rom(2), rom(1), torn);
  EXPECT_EQ(damaged.verdict, Verdict::Different);
  EXPECT_EQ(damaged.text.find("its option ROM is damaged: "), 0U);
}

TEST(ReadBack, TakesAnOptionRomFromBeforeForNoAnswer) {
  EXPECT_EQ(readBackRom(kIds, rom(2), rom(1), rom(1)).verdict, Verdict::NotCompared);
  EXPECT_EQ(readBackRom(kIds, rom(2), rom(1), {}).verdict, Verdict::NotCompared);
  Bytes ofOneVersion = rom(1);
  ofOneVersion.resize(ofOneVersion.size() + 512, 0xFF);
  EXPECT_EQ(readBackRom(kIds, ofOneVersion, rom(1), rom(1)).verdict, Verdict::NotCompared);
}

}  // namespace
