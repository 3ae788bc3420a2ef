#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/support/LogCapture.h"

namespace {

using testing::ElementsAre;

class EthernetPortClass : public testing::Test {
 protected:
  std::vector<Orvex_EthernetPort*> enumerate() {
    std::vector<Orvex_EthernetPort*> ports;
    core::InstanceList::Iterator cursor = m_provider.getInstances();
    for (core::CimInstance* port = cursor.first(); port != nullptr; port = cursor.next()) {
      ports.push_back(dynamic_cast<Orvex_EthernetPort*>(port));
    }
    return ports;
  }

  std::vector<std::string> identities() {
    std::vector<std::string> identities;
    for (const Orvex_EthernetPort* port : enumerate()) {
      identities.push_back(port->getIdentity());
    }
    return identities;
  }

  test::LogCapture m_log;
  test::FakeMidApi m_midApi;
  Orvex_EthernetPortClass m_provider;
};

TEST_F(EthernetPortClass, ServesAPortForEachThatTheLibraryManages) {
  EXPECT_EQ(m_provider.getName(), "Orvex_EthernetPort");
  EXPECT_THAT(identities(), ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:04:00.0"));
}

TEST_F(EthernetPortClass, AsksTheLibraryAtEachEnumeration) {
  EXPECT_EQ(enumerate().size(), 3u);
  m_midApi.adapters = {"0000:05:00.0"};
  EXPECT_THAT(identities(), ElementsAre("0000:05:00.0"));
  m_midApi.adapters.clear();
  EXPECT_THAT(identities(), testing::IsEmpty());
}

TEST_F(EthernetPortClass, DescribesAPort) {
  Orvex_EthernetPort& port = *enumerate().at(1);
  EXPECT_EQ(port.getClassName(), "Orvex_EthernetPort");
  EXPECT_EQ(port.DeviceID.getValue(), "0000:03:00.1");
  EXPECT_TRUE(port.DeviceID.isKey());
  EXPECT_EQ(port.Caption.getValue(), "Ethernet Port 0000:03:00.1");
  EXPECT_EQ(port.PortNumber.getValue(), 1);
}

TEST_F(EthernetPortClass, LogsItsEnumerations) {
  enumerate();
  EXPECT_THAT(m_log.messages("Orvex_EthernetPortClass::getInstances"),
              ElementsAre("getInstances", "return 3"));
}

}  // namespace
