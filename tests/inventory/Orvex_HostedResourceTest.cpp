#include <gmock/gmock.h>

#include "inventory/Orvex_HostedResource.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using HostedResource = test::AssociationFixture;

TEST_F(HostedResource, LeadsFromTheMachineToItsFirmwareFiles) {
  EXPECT_THAT(relations("Orvex_HostedResource"), IsEmpty());
  const std::string path = makeFile("first/a.rom", firmware(3));
  EXPECT_THAT(relations("Orvex_HostedResource"),
              ElementsAre("lab-7 > Orvex:FirmwareFileResource:" + path));
}

}  // namespace
