#include <gmock/gmock.h>

#include "inventory/Orvex_EthernetPortConformsToProfile.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using EthernetPortConformsToProfile = test::AssociationFixture;

TEST_F(EthernetPortConformsToProfile, LeadsFromTheProfileToEachPort) {
  EXPECT_THAT(relations("Orvex_EthernetPortConformsToProfile"), IsEmpty());
  m_adapters.makeAdapter(test::kAdapter, {});
  EXPECT_THAT(relations("Orvex_EthernetPortConformsToProfile"),
              ElementsAre("Orvex:EthernetPort_Profile > 0000:03:00.0",
                          "Orvex:EthernetPort_Profile > 0000:03:00.1"));
}

}  // namespace
