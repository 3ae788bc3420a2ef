#include <gmock/gmock.h>

#include "inventory/Orvex_ResourceForSoftwareIdentity.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;

using ResourceForSoftwareIdentity = test::AssociationFixture;

TEST_F(ResourceForSoftwareIdentity, LeadsFromAFileToItsImageAlone) {
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  const std::string one = makeFile("first/a.rom", firmware(3));
  const std::string other = makeFile("second/b.rom", firmware(4));
  EXPECT_THAT(
      relations("Orvex_ResourceForSoftwareIdentity"),
      ElementsAre("Orvex:FirmwareFileResource:" + one + " > Orvex:FirmwareFile:" + one,
                  "Orvex:FirmwareFileResource:" + other + " > Orvex:FirmwareFile:" + other));
}

}  // namespace
