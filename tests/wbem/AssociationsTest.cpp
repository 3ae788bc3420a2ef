#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/ServerFixture.h"
#include "wbem/Associations.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Associations : public testing::Test {
 protected:
  Associations() { m_agent.declareClasses(m_schema); }

  // Returns "CLASS.ROLE" of each reference at which the class may be.
  std::vector<std::string> find(const std::string& className,
                                const wbem::AssociationFilter& filter = {}) {
    std::vector<std::string> found;
    wbem::visitClassReferences(
        m_schema, *m_schema.find(className), filter,
        [&found](const core::ClassDeclaration& association, const core::PropertyDeclaration& role) {
          found.push_back(association.name + "." + role.name);
        });
    return found;
  }

  test::ModelAgent m_agent;
  core::CimSchema m_schema;
};

TEST_F(Associations, AreFoundByTheClassesThatTheirReferencesDeclare) {
  EXPECT_THAT(
      find("Test_Device"),
      ElementsAre("CIM_Dependency.Antecedent", "CIM_Dependency.Dependent", "Test_Link.Antecedent",
                  "Test_Link.Dependent", "CIM_ElementConformsToProfile.ManagedElement",
                  "Test_ElementConformsToProfile.ManagedElement"));
  EXPECT_THAT(find("Test_RegisteredProfile", {m_schema.find("Test_ElementConformsToProfile"),
                                              nullptr, "ConformantStandard", ""}),
              ElementsAre("Test_ElementConformsToProfile.ConformantStandard"));
  EXPECT_THAT(find("Test_Link"), IsEmpty());
}

TEST_F(Associations, AreFilteredByClassAndRole) {
  EXPECT_THAT(find("Test_Device", {m_schema.find("Test_Link"), nullptr, "", ""}),
              ElementsAre("Test_Link.Antecedent", "Test_Link.Dependent"));
  EXPECT_THAT(find("Test_Device", {m_schema.find("Test_Link"), nullptr, "dependent", ""}),
              ElementsAre("Test_Link.Dependent"));
  EXPECT_THAT(find("Test_Device", {m_schema.find("Test_Port"), nullptr, "", ""}), IsEmpty());
}

TEST_F(Associations, HaveOtherEnds) {
  core::CimBroker broker;
  broker.addAgent(&m_agent);
  const wbem::Namespaces namespaces(broker, "root/test");
  const wbem::ServedClass& served = *namespaces.agents().findServed("Test_Link");
  core::CimInstance& link = *m_agent.links.getInstances().first();
  const core::PropertyDeclaration& role = *served.declaration->findProperty("Antecedent");
  std::vector<std::string> ends;
  const auto visit = [&ends](const core::CimPropertyRef& end) { ends.push_back(end.getName()); };

  wbem::visitOtherEnds({served, link, role}, {}, visit);
  EXPECT_THAT(ends, ElementsAre("Dependent"));
  wbem::visitOtherEnds({served, link, role}, {nullptr, nullptr, "", "Antecedent"}, visit);
  EXPECT_THAT(ends, ElementsAre("Dependent"));
}

TEST_F(Associations, KnowWhichObjectsAreAskedFor) {
  core::CimBroker broker;
  broker.addAgent(&m_agent);
  const wbem::Namespaces namespaces(broker, "root/test");
  const wbem::AssociationFilter filter{nullptr, m_schema.find("Test_Device"), "", ""};
  EXPECT_TRUE(wbem::isResult(namespaces, {}, "Anything"));
  EXPECT_TRUE(wbem::isResult(namespaces, filter, "Test_Port"));
  EXPECT_FALSE(wbem::isResult(namespaces, filter, "Test_Job"));
  EXPECT_FALSE(wbem::isResult(namespaces, filter, "Test_RegisteredProfile"));
}

}  // namespace
