#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Os/Environment.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using testing::ElementsAre;

class EthernetPortClass : public test::InventoryFixture {
 protected:
  EthernetPortClass() { m_adapters.makeAdapter(test::kAdapter, {}); }

  std::vector<Orvex_EthernetPort*> ports() { return enumerate<Orvex_EthernetPort>(m_provider); }

  std::vector<std::string> identities() {
    std::vector<std::string> identities;
    for (const Orvex_EthernetPort* port : ports()) {
      identities.push_back(port->getIdentity());
    }
    return identities;
  }

  Orvex_EthernetPortClass m_provider;
};

TEST_F(EthernetPortClass, ServesAPortForEachThatTheLibraryManages) {
  EXPECT_EQ(m_provider.getName(), "Orvex_EthernetPort");
  EXPECT_THAT(identities(), ElementsAre("0000:03:00.0", "0000:03:00.1"));
}

TEST_F(EthernetPortClass, AsksTheLibraryAtEachEnumeration) {
  EXPECT_EQ(ports().size(), 2u);
  m_adapters.makeAdapter(test::kOtherAdapter, {});
  EXPECT_THAT(identities(),
              ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:04:00.0", "0000:04:00.1"));
  std::filesystem::remove_all(m_adapters.directory());
  EXPECT_THAT(identities(), testing::IsEmpty());
}

TEST_F(EthernetPortClass, KeepsThePortsForAsLongAsNothingChanges) {
  const std::vector<Orvex_EthernetPort*> first = ports();
  EXPECT_EQ(ports(), first);

  m_adapters.set(test::kAdapter, "/ports", R"([{"function": 3, "mac": "02:00:00:03:00:03"}])");
  EXPECT_THAT(identities(), ElementsAre("0000:03:00.3"));
  EXPECT_EQ(ports().front()->PortNumber.getValue(), 3);
}

TEST_F(EthernetPortClass, NamesTheSystemAsItIsCalledAtTheEnumeration) {
  for (const char* name : {"lab-7", "lab-8", "lab-7"}) {
    os::setEnvironment("COMPUTERNAME", name);
    EXPECT_EQ(ports().front()->SystemName.getValue(), name);
  }
}

TEST_F(EthernetPortClass, DescribesAPort) {
  Orvex_EthernetPort& port = *ports().at(1);
  EXPECT_EQ(port.getClassName(), "Orvex_EthernetPort");
  EXPECT_EQ(port.DeviceID.getValue(), "0000:03:00.1");
  EXPECT_TRUE(port.DeviceID.isKey());
  EXPECT_EQ(port.Caption.getValue(), "Ethernet Port 0000:03:00.1");
  EXPECT_EQ(port.PortNumber.getValue(), 1);
}

TEST_F(EthernetPortClass, SaysInTheWordsOfTheStandardWhatIsKnownOfALink) {
  m_adapters.set(test::kAdapter, "/ports", R"([
      {"function": 0, "mac": "02:aB:00:03:00:00", "bootType": 4, "link": "up",
       "speed": 10000000000, "maxSpeed": 25000000000, "mtu": 9000},
      {"function": 1, "mac": "02:00:00:03:00:01", "link": "down"},
      {"function": 2, "mac": "02:00:00:03:00:02", "link": "disabled"},
      {"function": 3, "mac": "02:00:00:03:00:03"}])");
  const std::vector<Orvex_EthernetPort*> all = ports();
  ASSERT_EQ(all.size(), 4u);
  EXPECT_EQ(all[0]->PermanentAddress.getValue(), "02AB00030000");
  EXPECT_THAT(all[0]->NetworkAddresses.getValue(), ElementsAre("02AB00030000"));
  EXPECT_EQ(all[0]->LinkTechnology.getValue(), 2);
  EXPECT_EQ(all[0]->EnabledState.getValue(), 2);
  EXPECT_EQ(all[0]->Speed.getValue(), 10'000'000'000u);
  EXPECT_EQ(all[0]->MaxSpeed.getValue(), 25'000'000'000u);
  EXPECT_EQ(all[0]->ActiveMaximumTransmissionUnit.getValue(), 9000u);
  EXPECT_EQ(all[0]->BootType.getValue(), 4);
  EXPECT_EQ(all[1]->EnabledState.getValue(), 6);
  EXPECT_EQ(all[2]->EnabledState.getValue(), 3);
}

TEST_F(EthernetPortClass, GuessesNothingOfALink) {
  Orvex_EthernetPort& port = *ports().at(0);
  for (const char* name :
       {"EnabledState", "RequestedState", "Speed", "MaxSpeed", "ActiveMaximumTransmissionUnit",
        "SupportedMaximumTransmissionUnit", "FullDuplex", "AutoSense", "PortType", "Capabilities",
        "InterfaceNames"}) {
    EXPECT_TRUE(port.getProperty(name)->isNull()) << name;
  }
}

TEST_F(EthernetPortClass, FollowsALink) {
  EXPECT_TRUE(ports().front()->EnabledState.isNull());
  m_adapters.set(test::kAdapter, "/ports/0/link", "\"up\"");
  EXPECT_EQ(ports().front()->EnabledState.getValue(), 2);
}

TEST_F(EthernetPortClass, LogsItsEnumerations) {
  ports();
  EXPECT_THAT(m_log.messages("Orvex_EthernetPortClass::getInstances"),
              ElementsAre("getInstances", "return 2"));
}

}  // namespace
