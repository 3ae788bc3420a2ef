#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "agent/ConcreteJobFactory.h"
#include "agent/SoftwareUpdateAgent.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using testing::ElementsAre;

// In the order of their registration.
const std::vector<std::string> kClasses = {
    "Orvex_SoftwareInstallationService", "Orvex_SoftwareInstallationServiceCapabilities",
    "Orvex_RegisteredProfile",           "Orvex_ElementCapabilities",
    "Orvex_ElementConformsToProfile",    "Orvex_ReferencedProfile",
    "Orvex_ServiceAffectsElement",       "Orvex_ConcreteJob",
    "Orvex_AffectedJobElement",          "Orvex_OwningJobElement",
};

TEST(SoftwareUpdateAgent, AddsItsProvidersInOrder) {
  const test::LogCapture log;
  const core::SoftwareUpdateAgent agent;

  std::vector<std::string> records;
  for (const std::string& name : kClasses) {
    records.push_back("Adding new class: " + name);
  }
  EXPECT_EQ(log.messages("core::CimClasses::add"), records);
  EXPECT_EQ(agent.getName(), "Software Update");
}

TEST(SoftwareUpdateAgent, ServesItsClassesAndNoOthers) {
  core::SoftwareUpdateAgent agent;

  EXPECT_THAT(agent.getClassNames(), testing::UnorderedElementsAreArray(kClasses));
  for (const std::string& name : kClasses) {
    EXPECT_TRUE(agent.hasClass(name)) << name;
  }
  EXPECT_FALSE(agent.hasClass("orvex_concretejob"));
  EXPECT_FALSE(agent.hasClass("Orvex_EthernetPort"));
  EXPECT_FALSE(agent.hasClass(""));
}

TEST(SoftwareUpdateAgent, EnumeratesItsClasses) {
  core::SoftwareUpdateAgent agent;

  EXPECT_EQ(agent.getInstances("Orvex_SoftwareInstallationService").count(), 1u);
  EXPECT_EQ(agent.getInstances("Orvex_ConcreteJob").first(), nullptr);
  EXPECT_THAT([&agent] { static_cast<void>(agent.getInstances("Orvex_Nothing")); },
              test::ThrowsExactly<utils::Exception>("class Orvex_Nothing does not exists"));
}

TEST(SoftwareUpdateAgent, NamesItselfInItsRecords) {
  core::SoftwareUpdateAgent agent;
  const test::LogCapture log;
  static_cast<void>(agent.getInstances("Orvex_ConcreteJob"));

  EXPECT_THAT(log.messages("core::CimAgent::getInstances"),
              ElementsAre("[Software Update] Finding class: Orvex_ConcreteJob",
                          "[Software Update] Get instance of Orvex_ConcreteJob class"));
}

TEST(SoftwareUpdateAgent, BringsTheJobFactory) {
  EXPECT_FALSE(ConcreteJobFactory::hasInstance());
  {
    const core::SoftwareUpdateAgent agent;
    EXPECT_TRUE(ConcreteJobFactory::hasInstance());
  }
  EXPECT_FALSE(ConcreteJobFactory::hasInstance());
}

}  // namespace
