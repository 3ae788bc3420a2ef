#include <gmock/gmock.h>

#include "tests/wbem/ServerFixture.h"

namespace {

using test::className;
using test::given;
using test::IsError;
using test::returned;
using test::texts;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ClassOperations : public test::ServerFixture {};

constexpr const char* kSpeed = "<PROPERTY NAME=\"Speed\" TYPE=\"uint64\"";

TEST_F(ClassOperations, GetWhatAClassDeclaresItself) {
  EXPECT_EQ(ask("GetClass",
                {given("ClassName", className("test_PORT")), given("IncludeQualifiers", "FALSE")}),
            returned("<CLASS NAME=\"Test_Port\" SUPERCLASS=\"Test_Device\">" + std::string(kSpeed) +
                     "></PROPERTY></CLASS>"));
}

TEST_F(ClassOperations, GetInheritedPartsOnRequest) {
  const std::string all =
      ask("GetClass", {given("ClassName", className("Test_Port")), given("LocalOnly", "false"),
                       given("IncludeClassOrigin", "true")});
  EXPECT_THAT(
      all, AllOf(HasSubstr("<PROPERTY NAME=\"Slot\" TYPE=\"uint16\" CLASSORIGIN=\"Test_Device\""),
                 HasSubstr("<QUALIFIER NAME=\"Key\""), HasSubstr("<METHOD NAME=\"Try\"")));
  EXPECT_THAT(ask("GetClass",
                  {given("ClassName", className("Test_Port")), given("LocalOnly", "false"),
                   given("IncludeQualifiers", "false"), given("PropertyList", texts({"caption"}))}),
              AllOf(HasSubstr("NAME=\"Caption\""), Not(HasSubstr("NAME=\"Slot\"")),
                    Not(HasSubstr("QUALIFIER"))));
}

TEST_F(ClassOperations, TellOfAClassThatThereIsNot) {
  EXPECT_THAT(ask("GetClass", {given("ClassName", className("Test_Nothing"))}),
              IsError(6, "there is no class &apos;Test_Nothing&apos; in namespace root/test"));
  EXPECT_THAT(ask("GetClass", {given("ClassName", className("Test_Port"))}, test::kInterop),
              IsError(6, _));
  EXPECT_THAT(ask("EnumerateClasses", {given("ClassName", className("Test_Nothing"))}),
              IsError(5, _));
  EXPECT_THAT(ask("EnumerateClassNames", {given("ClassName", className("Test_Nothing"))}),
              IsError(5, _));
}

TEST_F(ClassOperations, RefuseWrongParameters) {
  EXPECT_THAT(ask("GetClass"), IsError(4, "parameter ClassName: is required"));
  EXPECT_THAT(ask("GetClass", {given("ClassName", "Test_Port")}), IsError(4, _));
  EXPECT_THAT(
      ask("GetClass", {given("ClassName", className("Test_Port")), given("LocalOnly", "perhaps")}),
      IsError(4, _));
  EXPECT_THAT(ask("EnumerateClasses", {given("PropertyList", texts({}))}),
              IsError(4, "parameter PropertyList: EnumerateClasses has none of that name"));
}

TEST_F(ClassOperations, EnumerateTheClassesAtTheTop) {
  EXPECT_EQ(ask("EnumerateClassNames"),
            returned("<CLASSNAME NAME=\"CIM_ManagedElement\"/><CLASSNAME NAME=\"CIM_Dependency\"/>"
                     "<CLASSNAME NAME=\"CIM_ElementConformsToProfile\"/>"));
}

TEST_F(ClassOperations, EnumerateTheClassesBelow) {
  EXPECT_EQ(ask("EnumerateClassNames", {given("ClassName", className("cim_concretejob"))}),
            returned("<CLASSNAME NAME=\"Test_Job\"/>"));
  EXPECT_EQ(ask("EnumerateClassNames", {given("ClassName", className("Test_Device"))}),
            returned("<CLASSNAME NAME=\"Test_Port\"/>"));
  EXPECT_EQ(
      ask("EnumerateClassNames", {given("ClassName", className("CIM_RegisteredSpecification")),
                                  given("DeepInheritance", "TRUE")}),
      returned("<CLASSNAME NAME=\"CIM_RegisteredProfile\"/>"
               "<CLASSNAME NAME=\"Test_RegisteredProfile\"/>"));
  EXPECT_EQ(ask("EnumerateClasses", {given("ClassName", className("Test_Device")),
                                     given("IncludeQualifiers", "FALSE")}),
            returned("<CLASS NAME=\"Test_Port\" SUPERCLASS=\"Test_Device\">" + std::string(kSpeed) +
                     "></PROPERTY></CLASS>"));
  EXPECT_EQ(ask("EnumerateClasses", {given("ClassName", className("Test_Port"))}), returned(""));
}

TEST_F(ClassOperations, NeedNoInstances) {
  m_agent.devices.onEnumeration = [] { FAIL() << "was enumerated"; };
  ask("GetClass", {given("ClassName", className("Test_Device"))});
  ask("EnumerateClasses", {given("DeepInheritance", "TRUE")});
  ask("EnumerateClassNames", {given("DeepInheritance", "TRUE")});
}

}  // namespace
