#include <gtest/gtest.h>

#include "cli/AdapterWords.h"

namespace {

using ma::AdapterComponent;
using ma::FirmwareVersions;
using ma::ImageComparison;
using utils::FirmwareType;

AdapterComponent component(FirmwareType type, std::uint64_t digest) {
  AdapterComponent component;
  component.type = type;
  component.version = {2, 1};
  component.vendor = 0x1AF4;
  component.device = 0x1041;
  component.isForAdapter = true;
  component.digest = digest;
  return component;
}

TEST(AdapterWords, NameWhatAnUpdateWouldMean) {
  EXPECT_EQ(cli::comparisonName(ImageComparison::NotForAdapter), "not for it");
  EXPECT_EQ(cli::comparisonName(ImageComparison::NotUpdatable), "not updatable");
  EXPECT_EQ(cli::comparisonName(ImageComparison::TypesDiffer), "other types");
  EXPECT_EQ(cli::comparisonName(ImageComparison::Older), "older");
  EXPECT_EQ(cli::comparisonName(ImageComparison::SameVersion), "same version");
  EXPECT_EQ(cli::comparisonName(ImageComparison::SameContent), "same");
  EXPECT_EQ(cli::comparisonName(ImageComparison::Newer), "newer");
  EXPECT_EQ(cli::comparisonName(ImageComparison::Unknown), "unknown");
}

TEST(AdapterWords, NameBootTypes) {
  EXPECT_EQ(cli::bootTypeName(ma::BootType::None), "none");
  EXPECT_EQ(cli::bootTypeName(ma::BootType::Uefi), "UEFI");
}

TEST(AdapterWords, WriteNumbersInFullWidth) {
  ma::AdapterListing adapter;
  adapter.vendor = 0xF4;
  adapter.device = 0x1041;
  EXPECT_EQ(cli::toDeviceText(adapter), "00f4:1041");
  EXPECT_EQ(cli::toDigestText(0xABC), "0000000000000abc");
}

TEST(AdapterWords, NameImagesWithTheirDigests) {
  EXPECT_EQ(cli::describeImages({}), "");
  AdapterComponent other = component(FirmwareType::Uefi, 0x0123456789ABCDEF);
  other.isForAdapter = false;
  EXPECT_EQ(cli::describeImages({component(FirmwareType::Pxe, 0xFEDCBA9876543210), other}),
            "IMG_PXE 2.1 (fedcba98), IMG_UEFI 2.1 (01234567) for 1af4:1041");
}

TEST(AdapterWords, NameAStoredVersionThatIsNotTheRunningOne) {
  EXPECT_EQ(cli::describeVersions({"fw.undi", "1.0.0", "1.1.0"}), "fw.undi 1.0.0, stored 1.1.0");
  EXPECT_EQ(cli::describeVersions({"fw.undi", "1.0.0", "1.0.0"}), "fw.undi 1.0.0");
  EXPECT_EQ(cli::describeVersions({"fw.undi", "1.0.0", ""}), "fw.undi 1.0.0");
  EXPECT_EQ(cli::describeVersions({"fw.undi", "", "1.1.0"}), "fw.undi stored 1.1.0");
  EXPECT_EQ(cli::describeVersions({"fw.undi", "", ""}), "fw.undi");
}

TEST(AdapterWords, TellFirmwareThatWaits) {
  EXPECT_TRUE(cli::isWaiting({"fw", "1.0", "1.1"}));
  EXPECT_FALSE(cli::isWaiting({"fw", "1.0", "1.0"}));
  EXPECT_FALSE(cli::isWaiting({"fw", "", "1.1"}));
  EXPECT_FALSE(cli::isWaiting({"fw", "1.0", ""}));
}

TEST(AdapterWords, HaveNoTextForWhatIsNotKnown) {
  EXPECT_TRUE(cli::textOrNull("").isNull());
  EXPECT_EQ(cli::textOrNull("a"), client::Value("a"));
}

}  // namespace
