// The declarations of the classes against the instances that the loaded modules serve.

#include <algorithm>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace core {

void PrintTo(const PropertyDeclaration& property, std::ostream* stream) {
  *stream << property.name << " (type " << property.type << (property.isKey ? ", key" : "") << ")";
}

}  // namespace core

namespace {

using core::ClassDeclaration;
using core::PropertyDeclaration;
using test::firmware;
using test::InstanceReport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ServedSchema : public testing::Test {
 protected:
  // A machine with an instance of every class.
  ServedSchema() {
    m_host.makeAdapter(test::kAdapter, firmware(2));
    static_cast<void>(m_host.offer("a.rom", firmware(3)));
    m_host.load();
    m_schema = core::GetCimBroker().getSchema();
  }

  void update() {
    ASSERT_EQ(m_host.install(test::kFirstPort, m_host.makeImage(firmware(3))), 4096u);
    ASSERT_EQ(m_host.awaitEnd(), test::kCompleted);
  }

  // Returns what of a declaration an instance shows, too.
  static std::vector<PropertyDeclaration> shownBy(const InstanceReport& instance) {
    std::vector<PropertyDeclaration> properties;
    for (const test::PropertyReport& property : instance.properties) {
      properties.push_back(
          {property.name, static_cast<core::CimType>(property.type), property.isKey, "", ""});
    }
    return properties;
  }

  static std::vector<PropertyDeclaration> shownBy(const ClassDeclaration& declaration) {
    std::vector<PropertyDeclaration> properties = declaration.properties;
    for (PropertyDeclaration& property : properties) {
      property.referenceClass.clear();
      property.origin.clear();
    }
    return properties;
  }

  // Returns the classes that references of the class, its properties and parameters, lead to.
  static std::vector<std::string> referenceClassesOf(const ClassDeclaration& declaration) {
    std::vector<std::string> names;
    const auto note = [&names](const auto& element) {
      if (element.type == core::kCimReference) {
        names.push_back(element.referenceClass);
      }
    };
    std::for_each(declaration.properties.begin(), declaration.properties.end(), note);
    for (const core::MethodDeclaration& method : declaration.methods) {
      std::for_each(method.parameters.begin(), method.parameters.end(), note);
    }
    return names;
  }

  // Checks that each reference of the instance leads to an instance of the declared class.
  void checkTargets(core::CimInstance& instance) const {
    for (const PropertyDeclaration& property :
         m_schema->find(instance.getClassName())->properties) {
      if (property.type == core::kCimReference) {
        const auto& reference =
            dynamic_cast<const core::CimPropertyRef&>(*instance.getProperty(property.name));
        EXPECT_TRUE(m_schema->isA(reference.getTarget()->getClassName(), property.referenceClass))
            << instance.getPath() << " " << property.name;
      }
    }
  }

  test::ModuleHost m_host;
  std::shared_ptr<const core::CimSchema> m_schema;
};

TEST_F(ServedSchema, DeclaresEveryClassUnderTheNameThatIsServed) {
  ASSERT_EQ(test::servedClasses().size(), 23u);
  for (const std::string& name : test::servedClasses()) {
    ASSERT_NE(m_schema->find(name), nullptr) << name;
    EXPECT_EQ(m_schema->find(name)->name, name);
    EXPECT_THAT(m_schema->getSubclasses(name), IsEmpty());
  }
}

TEST_F(ServedSchema, DerivesElementsFromTheManagedElement) {
  for (const std::string& name : test::servedClasses()) {
    const core::CimSchema::Classes chain = m_schema->getSuperclasses(name);
    ASSERT_THAT(chain, Not(IsEmpty())) << name;
    EXPECT_NE(m_schema->isA(name, "CIM_ManagedElement"), chain.back()->isAssociation) << name;
    for (const ClassDeclaration* superclass : chain) {
      EXPECT_THAT(superclass->name, testing::StartsWith("CIM_"));
    }
  }
}

TEST_F(ServedSchema, DeclaresNothingElse) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    const bool isServed = core::GetCimBroker().getAgents().front()->hasClass(declaration->name) ||
                          core::GetCimBroker().getAgents().back()->hasClass(declaration->name);
    EXPECT_NE(isServed, declaration->name.starts_with("CIM_")) << declaration->name;
  }
}

TEST_F(ServedSchema, DeclaresWhatEveryInstanceShows) {
  update();
  for (const std::string& name : test::servedClasses()) {
    const std::vector<InstanceReport> instances = test::enumerate(name);
    EXPECT_THAT(instances, Not(IsEmpty())) << name;
    for (const InstanceReport& instance : instances) {
      EXPECT_EQ(shownBy(instance), shownBy(*m_schema->find(name))) << instance.path;
    }
  }
}

TEST_F(ServedSchema, LeadsReferencesToDeclaredClasses) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    for (const std::string& name : referenceClassesOf(*declaration)) {
      EXPECT_NE(m_schema->find(name), nullptr) << declaration->name << " refers to " << name;
    }
  }
}

TEST_F(ServedSchema, LeadsReferencesOfInstancesWhereItSays) {
  update();
  core::CimBroker& broker = core::GetCimBroker();
  std::size_t associations = 0;
  for (const std::string& name : test::servedClasses()) {
    const core::CimBroker::Request request(broker);
    for (core::CimInstance* instance : broker.getInstances(name)) {
      associations += m_schema->find(name)->isAssociation ? 1 : 0;
      checkTargets(*instance);
    }
  }
  EXPECT_GT(associations, 8u);
}

TEST_F(ServedSchema, HasTheMethodsThatTheServiceOffers) {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  const core::CimInstance& service =
      *broker.getInstances("Orvex_SoftwareInstallationService").first();
  std::vector<std::string> offered;
  for (const core::MethodDeclaration& method :
       m_schema->find("Orvex_SoftwareInstallationService")->methods) {
    if (service.offersMethod(method.name)) {
      offered.push_back(method.name);
    }
  }
  EXPECT_THAT(offered, ElementsAre("InstallFromSoftwareIdentity", "InstallFromURI",
                                   "CheckSoftwareIdentity"));
}

TEST_F(ServedSchema, HasTheStateChangeOfJobs) {
  const core::MethodDeclaration* method =
      m_schema->find("Orvex_ConcreteJob")->findMethod("RequestStateChange");
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(method->origin, "CIM_ConcreteJob");
}

TEST_F(ServedSchema, IsMadeOnce) {
  EXPECT_EQ(core::GetCimBroker().getSchema(), m_schema);
}

}  // namespace
