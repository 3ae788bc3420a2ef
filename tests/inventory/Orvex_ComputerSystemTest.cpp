#include <gmock/gmock.h>

#include "inventory/Orvex_ComputerSystem.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "tests/inventory/AssociationFixture.h"

namespace {

using testing::SizeIs;

class ComputerSystem : public test::AssociationFixture {
 protected:
  std::vector<Orvex_ComputerSystem*> systems() {
    return enumerate<Orvex_ComputerSystem>(m_provider);
  }

  Orvex_ComputerSystemClass m_provider;
};

TEST_F(ComputerSystem, IsCalledWhatTheKeysOfItsDevicesSay) {
  m_adapters.makeAdapter(test::kAdapter, {});
  Orvex_EthernetPortClass ports;
  const Orvex_EthernetPort& port = *enumerate<Orvex_EthernetPort>(ports).at(0);
  ASSERT_THAT(systems(), SizeIs(1));
  Orvex_ComputerSystem& system = *systems().at(0);
  EXPECT_EQ(system.getPath(),
            "Orvex_ComputerSystem.CreationClassName=\"CIM_UnitaryComputerSystem\","
            "Name=\"lab-7\"");
  EXPECT_EQ(system.CreationClassName.getValue(), port.SystemCreationClassName.getValue());
  EXPECT_EQ(system.Name.getValue(), port.SystemName.getValue());
  EXPECT_EQ(system.ElementName.getValue(), "lab-7");
  EXPECT_EQ(system.Caption.getValue(), "Computer System lab-7");
  EXPECT_EQ(system.NameFormat.getValue(), "Other");
  EXPECT_EQ(system.EnabledState.getValue(), 2);
}

TEST_F(ComputerSystem, IsKeptForAsLongAsItHasItsName) {
  const std::vector<Orvex_ComputerSystem*> first = systems();
  EXPECT_EQ(systems(), first);
  os::setEnvironment("COMPUTERNAME", "lab-8");
  ASSERT_THAT(systems(), SizeIs(1));
  EXPECT_EQ(systems().at(0)->Name.getValue(), "lab-8");
}

TEST_F(ComputerSystem, GuessesNothing) {
  Orvex_ComputerSystem& system = *systems().at(0);
  for (const char* name : {"Dedicated", "ResetCapability", "PrimaryOwnerName", "Roles",
                           "OperationalStatus", "OtherIdentifyingInfo"}) {
    EXPECT_TRUE(system.getProperty(name)->isNull()) << name;
  }
}

}  // namespace
