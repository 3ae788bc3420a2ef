#include <gmock/gmock.h>
#include <ostream>

#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "client/Target.h"
#include "core/CimBroker.h"
#include "tests/client/FakeInventory.h"

namespace {

using client::TargetKind;

class TargetTest : public testing::Test {
 protected:
  TargetTest() { m_broker.addAgent(&m_agent); }

  void addDevice(const std::string& className, const std::string& identifier) {
    (className == "Orvex_EthernetPort" ? m_ports : m_adapters)
        .add(std::make_unique<test::FakeDevice>(className, identifier));
  }

  void addAdapterOfTwoPorts() {
    addDevice("Orvex_PortController", "0000:0a:00");
    addDevice("Orvex_EthernetPort", "0000:0a:00.0");
    addDevice("Orvex_EthernetPort", "0000:0a:00.1");
  }

  client::Target find(TargetKind kind, const std::string& text) {
    return client::findTarget(m_connection, {kind, text, "given " + text});
  }

  std::string faultOf(TargetKind kind, const std::string& text) {
    try {
      return "found " + find(kind, text).path;
    } catch (const client::Fault& fault) {
      EXPECT_EQ(fault.kind(), client::Fault::Kind::Refused);
      return fault.what();
    }
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_ports = m_agent.serve("Orvex_EthernetPort");
  test::FakeProvider& m_adapters = m_agent.serve("Orvex_PortController");
};

TEST_F(TargetTest, FindsAPort) {
  addAdapterOfTwoPorts();
  const client::Target target = find(TargetKind::Port, "0000:0a:00.1");
  EXPECT_EQ(target.path, "Orvex_EthernetPort.InstanceID=\"0000:0a:00.1\"");
  EXPECT_EQ(target.label, "0000:0a:00.1");
}

TEST_F(TargetTest, FindsAnAdapter) {
  addAdapterOfTwoPorts();
  EXPECT_EQ(find(TargetKind::Adapter, "0000:0a:00").path,
            "Orvex_PortController.InstanceID=\"0000:0a:00\"");
}

TEST_F(TargetTest, FindsAnInstanceByItsPathAndCallsItByItsIdentifier) {
  addAdapterOfTwoPorts();
  const std::string path = "Orvex_EthernetPort.InstanceID=\"0000:0a:00.0\"";
  const client::Target target = find(TargetKind::ObjectPath, path);
  EXPECT_EQ(target.path, path);
  EXPECT_EQ(target.label, "0000:0a:00.0");
}

TEST_F(TargetTest, CallsAnInstanceWithoutIdentifierByItsPath) {
  const std::string path = "Orvex_PortController.InstanceID=\"x\"";
  m_adapters.add(std::make_unique<test::FakeInstance>("Orvex_PortController", "x"));
  EXPECT_EQ(find(TargetKind::ObjectPath, path).label, path);
}

TEST_F(TargetTest, ListsWhatIsThereWhenItFindsNothing) {
  addAdapterOfTwoPorts();
  const std::pair<TargetKind, const char*> names[] = {
      {TargetKind::Adapter, "0000:0b:00"},
      {TargetKind::Port, "0000:0b:00.0"},
      {TargetKind::Unknown, "nonsense"},
      {TargetKind::ObjectPath, "Nobody.Serves=\"me\""},
  };
  for (const auto& [kind, text] : names) {
    EXPECT_EQ(faultOf(kind, text), std::string("there is no adapter or port 'given ") + text +
                                       "'; there are\n  adapters: 0000:0a:00\n"
                                       "  ports:    0000:0a:00.0 0000:0a:00.1");
  }
}

TEST_F(TargetTest, SaysSoWhenThereIsNoAdapter) {
  EXPECT_EQ(
      faultOf(TargetKind::Adapter, "0000:0a:00"),
      "there is no adapter or port 'given 0000:0a:00'; there are no adapters here (see --adapters "
      "and 'quorvel adapters')");
}

}  // namespace
