#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/wbem/ServerFixture.h"
#include "wbem/Namespaces.h"
#include "wbem/Status.h"

namespace {

using testing::ElementsAre;
using testing::Property;
using testing::Throws;
using wbem::Namespace;
using wbem::Status;
using wbem::StatusFault;

class NamespaceTest : public testing::Test {
 protected:
  NamespaceTest() { m_broker.addAgent(&m_agent); }

  std::vector<std::string> servedBelow(const std::string& className) {
    std::vector<std::string> names;
    for (const wbem::ServedClass* served : agents().demandServedBelow(className)) {
      names.push_back(served->declaration->name);
    }
    return names;
  }

  [[nodiscard]] const Namespace& agents() {
    if (m_namespaces == nullptr) {
      m_namespaces = std::make_unique<wbem::Namespaces>(m_broker, "root/test");
    }
    return m_namespaces->agents();
  }

  core::CimBroker m_broker;
  test::ModelAgent m_agent;
  std::unique_ptr<wbem::Namespaces> m_namespaces;
};

TEST_F(NamespaceTest, KnowsTheServedClassesBelowAClass) {
  EXPECT_THAT(servedBelow("test_device"), ElementsAre("Test_Device", "Test_Port"));
  EXPECT_THAT(servedBelow("Test_Port"), ElementsAre("Test_Port"));
  EXPECT_THAT(servedBelow("CIM_Dependency"), ElementsAre("Test_Link"));
  EXPECT_THAT(servedBelow("CIM_ManagedElement"),
              ElementsAre("Test_Device", "Test_Port", "Test_RegisteredProfile", "Test_Job"));
  EXPECT_THAT([this] { servedBelow("CIM_Nothing"); },
              Throws<StatusFault>(Property(&StatusFault::status, Status::InvalidClass)));
}

TEST_F(NamespaceTest, VisitsTheInstancesOfAllAgentsUntilTold) {
  test::ModelAgent second;
  m_broker.addAgent(&second);
  int visits = 0;
  agents().findServed("Test_Device")->visitInstances([&visits](core::CimInstance&) {
    ++visits;
    return true;
  });
  EXPECT_EQ(visits, 4);
  visits = 0;
  agents().findServed("Test_Device")->visitInstances([&visits](core::CimInstance&) {
    return ++visits < 3;
  });
  EXPECT_EQ(visits, 3);
  m_namespaces.reset();
}

TEST_F(NamespaceTest, FindsAnInstanceByItsName) {
  std::string found;
  const auto use = [&found](const wbem::ServedClass& served, core::CimInstance& instance) {
    found = served.declaration->name + " " + instance.getPath();
  };
  EXPECT_TRUE(agents().withInstance(test::objectName("test_device.InstanceID=\"b\",Slot=2"), use));
  EXPECT_EQ(found, "Test_Device Test_Device.InstanceID=\"b\",Slot=2");
  // The class is that of the instance, not one above.
  EXPECT_FALSE(agents().withInstance(test::objectName("Test_Device.InstanceID=\"p\",Slot=1"), use));
  EXPECT_FALSE(agents().withInstance(test::objectName("CIM_ManagedElement.InstanceID=\"b\""), use));
  EXPECT_THAT([&] { static_cast<void>(agents().withInstance(test::objectName("No.A=1"), use)); },
              Throws<StatusFault>(Property(&StatusFault::status, Status::InvalidClass)));
}

TEST_F(NamespaceTest, KeepsTheFormatOfAClassForEachWayToAsk) {
  const core::ClassDeclaration& device = agents().demandClass("Test_Device");
  const core::ClassDeclaration& port = agents().demandClass("Test_Port");
  const Namespace::Format format = agents().format(device, {});
  EXPECT_EQ(agents().format(device, {}), format);
  EXPECT_NE(agents().format(port, {}), format);
  EXPECT_NE(agents().format(device, {true, false, nullptr}), format);
  EXPECT_NE(agents().format(device, {false, true, nullptr}), format);
  EXPECT_NE(agents().format(port, {false, false, &device}), agents().format(port, {}));
}

class SecretiveAgent final : public test::FakeAgent, public core::ClassDeclarer {
 public:
  void declareClasses(core::CimSchema& /*schema*/) const override {}
};

TEST_F(NamespaceTest, LeavesOutAClassThatItsAgentDoesNotDeclareWithTheOthers) {
  SecretiveAgent other;
  other.serve("Test_Secret");
  m_broker.addAgent(&other);
  EXPECT_EQ(agents().findServed("Test_Secret"), nullptr);
  EXPECT_EQ(agents().served().size(), 6U);
  m_namespaces.reset();
}

}  // namespace
