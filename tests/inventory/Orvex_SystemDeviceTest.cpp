#include <gmock/gmock.h>

#include "inventory/Orvex_SystemDevice.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SystemDevice = test::AssociationFixture;

TEST_F(SystemDevice, LeadsFromTheMachineToItsAdaptersAndPorts) {
  m_adapters.makeAdapter(test::kAdapter, {});
  EXPECT_THAT(relations("Orvex_SystemDevice"),
              ElementsAre("lab-7 > 0000:03:00", "lab-7 > 0000:03:00.0", "lab-7 > 0000:03:00.1"));
  std::filesystem::remove_all(m_adapters.folder(test::kAdapter));
  EXPECT_THAT(relations("Orvex_SystemDevice"), IsEmpty());
}

TEST_F(SystemDevice, LogsItsEnumerations) {
  relations("Orvex_SystemDevice");
  EXPECT_THAT(m_log.messages("Orvex_SystemDeviceClass::getInstances"),
              ElementsAre("getInstances", "return 0"));
}

}  // namespace
