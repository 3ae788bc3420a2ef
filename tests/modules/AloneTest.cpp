// The update agent without its sibling: a process that loads that module only.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Os/SharedLibrary.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "tests/modules/Client.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::enumerate;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(AgentAlone, ServesWhatNeedsNoSibling) {
  const test::ModuleHost configuration;
  const std::filesystem::path directory = std::filesystem::absolute(QUORVEL_TEST_MODULE_DIR);
  host::loadModule(directory /
                   (std::string("OrvexSoftwareUpdateAgent") + os::sharedLibrarySuffix()));

  EXPECT_EQ(test::servedClasses().size(), 10u);
  EXPECT_THAT(enumerate("Orvex_RegisteredProfile", "InstanceID"),
              ElementsAre("Orvex:SoftwareUpdate_Profile"));
  EXPECT_EQ(enumerate("Orvex_ElementConformsToProfile").size(), 1u);
  EXPECT_EQ(enumerate("Orvex_ElementCapabilities").size(), 1u);
  for (const char* empty :
       {"Orvex_ReferencedProfile", "Orvex_ServiceAffectsElement", "Orvex_ConcreteJob",
        "Orvex_AffectedJobElement", "Orvex_OwningJobElement"}) {
    EXPECT_THAT(enumerate(empty), IsEmpty()) << empty;
  }

  const auto schema = core::GetCimBroker().getSchema();
  for (const core::ClassDeclaration* declaration : schema->getDescendants("")) {
    for (const core::PropertyDeclaration& property : declaration->properties) {
      if (property.type == core::kCimReference) {
        EXPECT_NE(schema->find(property.referenceClass), nullptr) << declaration->name;
      }
    }
  }
}

}  // namespace
