#include <gmock/gmock.h>

#include "midapi/Digest.h"
#include "midapi/FlashListing.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::AdapterListing;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::HasSubstr;
using testing::IsEmpty;
using utils::FirmwareType;

AdapterListing describe(const Bytes& flash) {
  AdapterListing listing;
  listing.vendor = 0x1AF4;
  listing.device = 0x1041;
  ma::describeFlash(flash, listing);
  return listing;
}

TEST(FlashListing, TellsEachImage) {
  const Bytes flash = RomBuilder()
                          .add(RomImage::legacy().version(2, 17))
                          .add(RomImage::efi().version(5, 1).device(0x10EC, 0x8139))
                          .trailing(512, 0xFF)
                          .build();
  const AdapterListing listing = describe(flash);
  EXPECT_EQ(listing.flashBytes, flash.size());
  EXPECT_THAT(listing.flashDefect, IsEmpty());
  ASSERT_EQ(listing.components.size(), 2U);
  const ma::AdapterComponent& pxe = listing.components[0];
  EXPECT_EQ(pxe.type, FirmwareType::Pxe);
  EXPECT_EQ(pxe.version, (utils::FirmwareVersion{2, 17}));
  EXPECT_EQ(pxe.offset, 0U);
  EXPECT_EQ(pxe.length, 1024U);
  EXPECT_EQ(pxe.digest, ma::digestOf({flash.data(), pxe.length}));
  EXPECT_TRUE(pxe.isForAdapter);
  EXPECT_FALSE(listing.components[1].isForAdapter);
  EXPECT_EQ(listing.components[1].vendor, 0x10EC);
  EXPECT_EQ(listing.components[1].offset, 1024U);
}

TEST(FlashListing, TellsWhatIsWrong) {
  const AdapterListing listing = describe(Bytes(700, 0x11));
  EXPECT_THAT(listing.components, IsEmpty());
  EXPECT_EQ(listing.flashBytes, 700U);
  EXPECT_THAT(listing.flashDefect, HasSubstr("image 0"));
}

TEST(FlashListing, TakesABlankFlashForSound) {
  EXPECT_THAT(describe({}).flashDefect, IsEmpty());
  EXPECT_THAT(describe(Bytes(4096, 0xFF)).flashDefect, IsEmpty());
}

}  // namespace
