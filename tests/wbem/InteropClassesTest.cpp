#include <algorithm>
#include <gmock/gmock.h>

#include "cim/SchemaTexts.h"
#include "core/ClassQualifiers.h"
#include "core/DeclareClass.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/InteropClasses.h"
#include "wbem/InteropTexts.h"

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

bool isDescribed(const core::ClassQualifiers::List& list) {
  return std::any_of(list.begin(), list.end(), [](const core::Qualifier& qualifier) {
    return qualifier.declaration->name == "Description" && qualifier.texts.at(0).ends_with('.');
  });
}

TEST(InteropTexts, DescribeTheServersOwnClasses) {
  core::CimSchema schema;
  core::declareClass<wbem::CIM_Namespace>(schema);
  core::declareClass<wbem::CIM_ObjectManager>(schema);
  core::ClassTexts texts;
  cim::addSchemaTexts(texts);
  texts.add(wbem::getInteropTexts());
  const core::ClassQualifiers qualifiers(schema, texts);
  for (const core::ClassDeclaration* declaration : schema.getDescendants("")) {
    EXPECT_TRUE(isDescribed(qualifiers.ofClass(*declaration))) << declaration->name;
    for (const core::PropertyDeclaration& property : declaration->properties) {
      EXPECT_TRUE(isDescribed(qualifiers.ofProperty(*declaration, property)))
          << declaration->name << "." << property.name;
    }
  }
}

TEST_F(InteropClasses, AreShownWithWhatTheyAre) {
  EXPECT_THAT(
      ask("GetClass", {test::given("ClassName", test::className("CIM_Namespace"))}, test::kInterop),
      testing::HasSubstr("<VALUE>A namespace that the server serves.</VALUE>"));
}

}  // namespace
