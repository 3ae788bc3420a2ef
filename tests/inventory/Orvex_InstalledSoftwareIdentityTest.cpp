#include <gmock/gmock.h>

#include "inventory/Orvex_InstalledSoftwareIdentity.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;

using InstalledSoftwareIdentity = test::AssociationFixture;

TEST_F(InstalledSoftwareIdentity, LeadsFromTheMachineToWhatItsAdaptersHold) {
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));
  EXPECT_THAT(relations("Orvex_InstalledSoftwareIdentity"),
              ElementsAre("lab-7 > Orvex:InstalledFirmware:0000:03:00/0",
                          "lab-7 > Orvex:InstalledFirmware:0000:03:00/1"));
}

}  // namespace
