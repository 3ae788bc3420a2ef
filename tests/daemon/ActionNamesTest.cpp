#include <gmock/gmock.h>
#include <string>

#include "core/CimSchema.h"
#include "daemon/ActionNames.h"

namespace {

class ActionNamesTest : public testing::Test {
 protected:
  ActionNamesTest() {
    core::ClassDeclaration service;
    service.name = "Test_Service";
    service.methods = {{.name = "InstallFromURI", .parameters = {}, .origin = "Test_Service"}};
    m_schema.add(service);
    core::ClassDeclaration job;
    job.name = "Test_Job";
    job.superclass = "Test_Service";
    job.methods = {{.name = "RequestStateChange", .parameters = {}, .origin = "Test_Job"}};
    m_schema.add(job);
  }

  core::CimSchema m_schema;
};

TEST_F(ActionNamesTest, KnowsTheMethodsOfAllClassesInAnyCase) {
  const quorveld::ActionNames names(m_schema);
  EXPECT_EQ(names.find("InstallFromURI"), "InstallFromURI");
  EXPECT_EQ(names.find("installfromuri"), "InstallFromURI");
  EXPECT_EQ(names.find("REQUESTSTATECHANGE"), "RequestStateChange");
}

TEST_F(ActionNamesTest, KnowsTheOperationsOfTheServer) {
  const quorveld::ActionNames names(m_schema);
  EXPECT_EQ(names.find("modifyinstance"), "ModifyInstance");
}

TEST_F(ActionNamesTest, KnowsNothingElse) {
  const quorveld::ActionNames names(m_schema);
  for (const char* const name : {"", "Install", "InstallFromURI2", "Login", "JobEnd"}) {
    EXPECT_EQ(names.find(name), "") << name;
  }
}

}  // namespace
