#include <gmock/gmock.h>

#include "wbem/Operations.h"

namespace {

TEST(Operations, AreFoundInAnyCase) {
  const wbem::Operation* operation = wbem::findOperation("getINSTANCE");
  ASSERT_NE(operation, nullptr);
  EXPECT_EQ(operation->name, "GetInstance");
  EXPECT_THAT(operation->parameters,
              testing::ElementsAre("InstanceName", "LocalOnly", "IncludeQualifiers",
                                   "IncludeClassOrigin", "PropertyList"));
}

TEST(Operations, ThatChangeSomethingAreMarked) {
  EXPECT_TRUE(wbem::findOperation("ModifyInstance")->isChange);
  EXPECT_FALSE(wbem::findOperation("GetInstance")->isChange);
  EXPECT_FALSE(wbem::findOperation("CloseEnumeration")->isChange);
}

TEST(Operations, ThatAreNotOfferedAreNotFound) {
  for (const char* name :
       {"CreateInstance", "DeleteInstance", "CreateClass", "ModifyClass", "DeleteClass",
        "ExecQuery", "GetProperty", "SetProperty", "SetQualifier", "DeleteQualifier",
        "EnumerationCount", "OpenQueryInstances", "PullInstances", "Nonsense", ""}) {
    EXPECT_EQ(wbem::findOperation(name), nullptr) << name;
  }
}

}  // namespace
