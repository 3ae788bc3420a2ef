#include <gmock/gmock.h>
#include <ostream>

#include "cli/BrokerConnection.h"
#include "cli/Context.h"
#include "cli/Target.h"
#include "core/CimBroker.h"
#include "tests/cli/FakeInventory.h"

namespace {

using cli::TargetKind;

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

  std::string faultOf(const std::string& text) {
    try {
      return "found " + cli::findTarget(m_connection, text).path;
    } catch (const cli::Fault& fault) {
      EXPECT_EQ(fault.status(), cli::ExitStatus::Failed);
      return fault.what();
    }
  }

  core::CimBroker m_broker;
  cli::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_ports = m_agent.serve("Orvex_EthernetPort");
  test::FakeProvider& m_adapters = m_agent.serve("Orvex_PortController");
};

void expectParsed(const std::string& text, TargetKind kind, const std::string& canonical) {
  const cli::TargetName name = cli::parseTarget(text);
  EXPECT_EQ(static_cast<int>(name.kind), static_cast<int>(kind)) << text;
  EXPECT_EQ(name.text, canonical);
}

TEST_F(TargetTest, ReadsIdentifiersAndPaths) {
  expectParsed("0000:0a:00.1", TargetKind::Port, "0000:0a:00.1");
  expectParsed("0000:0A:00.1", TargetKind::Port, "0000:0a:00.1");
  expectParsed("0000:0A:00", TargetKind::Adapter, "0000:0a:00");
  expectParsed("C.K=\"v\"", TargetKind::ObjectPath, "C.K=\"v\"");
  expectParsed("nonsense", TargetKind::Unknown, "nonsense");
  expectParsed("0000:0a:00.9", TargetKind::Unknown, "0000:0a:00.9");
  expectParsed("", TargetKind::Unknown, "");
}

TEST_F(TargetTest, FindsAPort) {
  addAdapterOfTwoPorts();
  const cli::Target target = cli::findTarget(m_connection, "0000:0A:00.1");
  EXPECT_EQ(target.path, "Orvex_EthernetPort.InstanceID=\"0000:0a:00.1\"");
  EXPECT_EQ(target.label, "0000:0a:00.1");
}

TEST_F(TargetTest, FindsAnAdapter) {
  addAdapterOfTwoPorts();
  EXPECT_EQ(cli::findTarget(m_connection, "0000:0a:00").path,
            "Orvex_PortController.InstanceID=\"0000:0a:00\"");
}

TEST_F(TargetTest, FindsAnInstanceByItsPathAndCallsItByItsIdentifier) {
  addAdapterOfTwoPorts();
  const std::string path = "Orvex_EthernetPort.InstanceID=\"0000:0a:00.0\"";
  const cli::Target target = cli::findTarget(m_connection, path);
  EXPECT_EQ(target.path, path);
  EXPECT_EQ(target.label, "0000:0a:00.0");
}

TEST_F(TargetTest, CallsAnInstanceWithoutIdentifierByItsPath) {
  const std::string path = "Orvex_PortController.InstanceID=\"x\"";
  m_adapters.add(std::make_unique<test::FakeInstance>("Orvex_PortController", "x"));
  EXPECT_EQ(cli::findTarget(m_connection, path).label, path);
}

TEST_F(TargetTest, ListsWhatIsThereWhenItFindsNothing) {
  addAdapterOfTwoPorts();
  for (const char* text : {"0000:0b:00", "0000:0b:00.0", "nonsense", "Nobody.Serves=\"me\""}) {
    EXPECT_EQ(faultOf(text), std::string("there is no adapter or port '") + text +
                                 "'; there are\n  adapters: 0000:0a:00\n"
                                 "  ports:    0000:0a:00.0 0000:0a:00.1");
  }
}

TEST_F(TargetTest, SaysSoWhenThereIsNoAdapter) {
  EXPECT_EQ(faultOf("0000:0a:00"),
            "there is no adapter or port '0000:0a:00'; there are no adapters here (see --adapters "
            "and 'quorvel adapters')");
}

}  // namespace
