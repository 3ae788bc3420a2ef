#include <gmock/gmock.h>

#include "midapi/Virtual/AdapterOutline.h"

namespace {

using ma::AdapterListing;
using ma::AdapterPort;
using ma::BootType;
using ma::LinkKind;
using ma::PortState;
using testing::ElementsAre;
using testing::IsEmpty;

ma::AdapterDescription describe() {
  ma::AdapterDescription description;
  description.name = "Lab adapter";
  description.pci = {0, 3, 0};
  description.vendor = 0x1AF4;
  description.device = 0x1041;
  description.isUpdatable = false;
  description.ports = {{0, "02:00:00:03:00:00", BootType::Pxe, PortState::Enabled, 10U, 25U, 1500U},
                       {3, "02:00:00:03:00:03"}};
  return description;
}

TEST(AdapterOutline, TellsWhatTheDescriptionSays) {
  const AdapterListing listing = outlineOf(describe());
  EXPECT_EQ(listing.kind, ma::AdapterKind::Virtual);
  EXPECT_EQ(listing.pci, "0000:03:00");
  EXPECT_EQ(listing.name, "Lab adapter");
  EXPECT_EQ(listing.vendor, 0x1AF4);
  EXPECT_EQ(listing.device, 0x1041);
  EXPECT_FALSE(listing.isUpdatable);
  EXPECT_THAT(listing.components, IsEmpty());
}

TEST(AdapterOutline, TellsOfALinkWhatIsKnown) {
  EXPECT_THAT(
      outlineOf(describe()).ports,
      ElementsAre(AdapterPort{"0000:03:00.0",
                              "02:00:00:03:00:00",
                              BootType::Pxe,
                              {},
                              {LinkKind::Ethernet, PortState::Enabled, "02:00:00:03:00:00", 10U,
                               25U, 1500U}},
                  AdapterPort{"0000:03:00.3",
                              "02:00:00:03:00:03",
                              BootType::None,
                              {},
                              {LinkKind::Ethernet, PortState::Unknown, "02:00:00:03:00:03"}}));
}

}  // namespace
