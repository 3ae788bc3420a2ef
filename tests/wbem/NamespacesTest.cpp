#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "core/CimPropertyRef.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/Namespaces.h"
#include "wbem/Status.h"

namespace {

using testing::ElementsAre;
using testing::Property;
using testing::Throws;
using testing::UnorderedElementsAre;
using wbem::Namespace;
using wbem::Status;
using wbem::StatusFault;

class NamespacesTest : public testing::Test {
 protected:
  NamespacesTest() { m_broker.addAgent(&m_agent); }

  static std::vector<std::string> classesOf(const Namespace& nameSpace) {
    std::vector<std::string> names;
    for (const core::ClassDeclaration* declaration : nameSpace.schema().getDescendants("")) {
      names.push_back(declaration->name);
    }
    return names;
  }

  static std::vector<std::string> servedOf(const Namespace& nameSpace) {
    std::vector<std::string> names;
    for (const wbem::ServedClass* served : nameSpace.served()) {
      names.push_back(served->declaration->name);
    }
    return names;
  }

  core::CimBroker m_broker;
  test::ModelAgent m_agent;
};

TEST_F(NamespacesTest, AreFoundByNameInAnyCase) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  EXPECT_EQ(&namespaces.demand("ROOT/Test"), &namespaces.agents());
  EXPECT_EQ(&namespaces.demand("root/Interop"), &namespaces.interop());
  EXPECT_THAT(namespaces.names(), ElementsAre("root/test", "root/interop"));
  for (const char* name : {"", "root", "root/cimv2", "/root/test"}) {
    EXPECT_THAT([&] { static_cast<void>(namespaces.demand(name)); },
                Throws<StatusFault>(Property(&StatusFault::status, Status::InvalidNamespace)))
        << name;
  }
}

TEST_F(NamespacesTest, HaveTheProfilesAndTheServerInInterop) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  EXPECT_THAT(servedOf(namespaces.interop()),
              UnorderedElementsAre("CIM_Namespace", "CIM_ObjectManager", "Test_RegisteredProfile",
                                   "Test_ElementConformsToProfile"));
  EXPECT_THAT(classesOf(namespaces.interop()),
              UnorderedElementsAre("CIM_ManagedElement", "CIM_RegisteredSpecification",
                                   "CIM_RegisteredProfile", "Test_RegisteredProfile",
                                   "CIM_ElementConformsToProfile", "Test_ElementConformsToProfile",
                                   "CIM_Namespace", "CIM_ManagedSystemElement",
                                   "CIM_LogicalElement", "CIM_EnabledLogicalElement", "CIM_Service",
                                   "CIM_WBEMService", "CIM_ObjectManager"));
  EXPECT_EQ(namespaces.agents().schema().find("CIM_Namespace"), nullptr);
}

TEST_F(NamespacesTest, AreHomesOfClasses) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  EXPECT_EQ(&namespaces.homeOf("test_registeredprofile"), &namespaces.interop());
  EXPECT_EQ(&namespaces.homeOf("CIM_Namespace"), &namespaces.interop());
  EXPECT_EQ(&namespaces.homeOf("Test_Device"), &namespaces.agents());
  EXPECT_EQ(&namespaces.homeOf("Test_ElementConformsToProfile"), &namespaces.agents());
  EXPECT_EQ(&namespaces.homeOf("Unknown"), &namespaces.agents());
}

TEST_F(NamespacesTest, StandWithoutAnyAgent) {
  core::CimBroker broker;
  const wbem::Namespaces namespaces(broker, "root/test");
  EXPECT_TRUE(namespaces.agents().served().empty());
  EXPECT_EQ(namespaces.interop().served().size(), 2U);
  EXPECT_EQ(&namespaces.agents().schema(), broker.getSchema().get());
}

TEST_F(NamespacesTest, AreOutOfDateWhenAnAgentHasBeenAdded) {
  core::CimBroker broker;
  const wbem::Namespaces namespaces(broker, "root/test");
  EXPECT_TRUE(namespaces.isUpToDate(broker));
  broker.addAgent(&m_agent);
  EXPECT_FALSE(namespaces.isUpToDate(broker));
}

TEST_F(NamespacesTest, AreNamedInTheReferencesThatCrossThem) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  const wbem::ServedClass* served =
      namespaces.interop().findServed("Test_ElementConformsToProfile");
  ASSERT_NE(served, nullptr);
  EXPECT_TRUE(served->isCrossing);
  EXPECT_FALSE(namespaces.agents().findServed("Test_Link")->isCrossing);
  test::Profile profile("one");
  test::Device device("a", 1);
  test::Conformance conformance(&profile, &device);

  wbem::CrossingInstance crossing(namespaces, *served->declaration, conformance);

  EXPECT_EQ(crossing.getClassName(), "Test_ElementConformsToProfile");
  EXPECT_EQ(crossing.getProperty("ConformantStandard")->toString(),
            "root/interop:Test_RegisteredProfile.InstanceID=\"one\"");
  EXPECT_EQ(crossing.getProperty("ManagedElement")->toString(),
            "root/test:Test_Device.InstanceID=\"a\",Slot=1");
  EXPECT_TRUE(crossing.getProperty("ManagedElement")->isKey());
}

TEST_F(NamespacesTest, LeaveReferencesThatNameNothingAsTheyAre) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  test::Conformance conformance(nullptr, nullptr);
  conformance.ConformantStandard.setText("no path");
  conformance.ManagedElement.setNull();

  wbem::CrossingInstance crossing(
      namespaces, *namespaces.agents().schema().find("Test_ElementConformsToProfile"), conformance);

  EXPECT_EQ(crossing.getProperty("ConformantStandard")->toString(), "no path");
  EXPECT_TRUE(crossing.getProperty("ManagedElement")->isNull());
}

}  // namespace
