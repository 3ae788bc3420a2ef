#include <gmock/gmock.h>

#include "tests/wbem/ServerFixture.h"
#include "wbem/InteropClasses.h"

namespace {

class InteropClasses : public test::ServerFixture {};

TEST_F(InteropClasses, TellOfBothNamespaces) {
  wbem::CIM_Namespace nameSpace;
  nameSpace.setPropertyValues("root/test");
  wbem::CIM_ObjectManager manager;
  manager.setPropertyValues();
  const std::string system = "SystemCreationClassName=\"CIM_UnitaryComputerSystem\",SystemName=\"" +
                             manager.SystemName.getValue() + "\",";

  EXPECT_EQ(nameSpace.getPath(), "CIM_Namespace." + system +
                                     "ObjectManagerCreationClassName=\"CIM_ObjectManager\","
                                     "ObjectManagerName=\"Orvex:quorveld\","
                                     "CreationClassName=\"CIM_Namespace\",Name=\"root/test\"");
  EXPECT_EQ(manager.getPath(), "CIM_ObjectManager." + system +
                                   "CreationClassName=\"CIM_ObjectManager\","
                                   "Name=\"Orvex:quorveld\"");
}

TEST_F(InteropClasses, AreServedInTheInteropNamespaceAlone) {
  const auto parameters = [] {
    return std::vector{test::given("ClassName", test::className("cim_namespace")),
                       test::given("PropertyList", test::texts({"Name"}))};
  };
  const std::string answer = ask("EnumerateInstances", parameters(), test::kInterop);
  const std::string property =
      "<INSTANCE CLASSNAME=\"CIM_Namespace\"><PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>";
  EXPECT_THAT(answer, testing::HasSubstr(property + "root/interop</VALUE>"));
  EXPECT_THAT(answer, testing::HasSubstr(property + "root/test</VALUE>"));
  EXPECT_THAT(ask("EnumerateInstances", parameters()), test::IsError(5, testing::_));
  EXPECT_THAT(ask("EnumerateInstances",
                  {test::given("ClassName", test::className("CIM_ObjectManager")),
                   test::given("PropertyList", test::texts({"started", "Name"}))},
                  test::kInterop),
              testing::HasSubstr("<INSTANCE CLASSNAME=\"CIM_ObjectManager\">"
                                 "<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>Orvex:quorveld"
                                 "</VALUE></PROPERTY><PROPERTY NAME=\"Started\" TYPE=\"boolean\">"
                                 "<VALUE>TRUE</VALUE></PROPERTY></INSTANCE>"));
}

}  // namespace
