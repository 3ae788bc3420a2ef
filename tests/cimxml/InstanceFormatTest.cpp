#include <gmock/gmock.h>

#include "cimxml/Buffer.h"
#include "cimxml/InstanceFormat.h"
#include "tests/cimxml/Allocations.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::InstanceFormat;

constexpr const char* kEmptyInstance =
    "<INSTANCE CLASSNAME=\"Test_Everything\">"
    "<PROPERTY NAME=\"Text\" TYPE=\"string\"></PROPERTY>"
    "<PROPERTY NAME=\"Byte\" TYPE=\"uint8\"></PROPERTY>"
    "<PROPERTY NAME=\"Signed\" TYPE=\"sint8\"></PROPERTY>"
    "<PROPERTY NAME=\"Short\" TYPE=\"uint16\"></PROPERTY>"
    "<PROPERTY NAME=\"Word\" TYPE=\"uint32\"></PROPERTY>"
    "<PROPERTY NAME=\"Long\" TYPE=\"uint64\"></PROPERTY>"
    "<PROPERTY NAME=\"Truth\" TYPE=\"boolean\"></PROPERTY>"
    "<PROPERTY NAME=\"When\" TYPE=\"datetime\"></PROPERTY>"
    "<PROPERTY.ARRAY NAME=\"Shorts\" TYPE=\"uint16\"></PROPERTY.ARRAY>"
    "<PROPERTY.ARRAY NAME=\"Texts\" TYPE=\"string\"></PROPERTY.ARRAY>"
    "<PROPERTY.REFERENCE NAME=\"Other\" REFERENCECLASS=\"CIM_Thing\"></PROPERTY.REFERENCE>"
    "</INSTANCE>";

std::string write(core::CimInstance& instance, const core::ClassDeclaration& declaration,
                  const InstanceFormat::Options& options) {
  cimxml::Buffer out;
  InstanceFormat(declaration, options, "root/x").append(out, instance);
  return out;
}

std::string write(core::CimInstance& instance, const InstanceFormat::Options& options = {}) {
  return write(instance, test::declareEverything(), options);
}

TEST(InstanceFormat, WritesPropertiesThatAreNullWithoutValue) {
  test::Everything instance;
  EXPECT_EQ(write(instance), kEmptyInstance);
}

TEST(InstanceFormat, WritesValues) {
  test::Everything instance;
  test::Named other("a");
  instance.Text.setValue("t");
  instance.Shorts.setValue({1, 2});
  instance.Other.setTarget(&other);
  const cimxml::NameSet names({"other", "TEXT", "Shorts", "Unknown"});
  EXPECT_EQ(write(instance, {.propertyList = &names}),
            "<INSTANCE CLASSNAME=\"Test_Everything\">"
            "<PROPERTY NAME=\"Text\" TYPE=\"string\"><VALUE>t</VALUE></PROPERTY>"
            "<PROPERTY.ARRAY NAME=\"Shorts\" TYPE=\"uint16\"><VALUE.ARRAY><VALUE>1</VALUE>"
            "<VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"
            "<PROPERTY.REFERENCE NAME=\"Other\" REFERENCECLASS=\"CIM_Thing\"><VALUE.REFERENCE>"
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
            "<NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"Test_Named\">"
            "<KEYBINDING NAME=\"Name\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">a</KEYVALUE>"
            "</KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH></VALUE.REFERENCE>"
            "</PROPERTY.REFERENCE></INSTANCE>");
}

TEST(InstanceFormat, WritesNothingForAnEmptyList) {
  test::Everything instance;
  const cimxml::NameSet none({});
  EXPECT_EQ(write(instance, {.propertyList = &none}),
            "<INSTANCE CLASSNAME=\"Test_Everything\"></INSTANCE>");
}

TEST(InstanceFormat, LeavesOutWhatTheClassInherits) {
  test::Everything instance;
  const cimxml::NameSet names({"Text", "Byte"});
  EXPECT_EQ(
      write(instance, {.isLocalOnly = true, .propertyList = &names}),
      "<INSTANCE CLASSNAME=\"Test_Everything\"><PROPERTY NAME=\"Byte\" TYPE=\"uint8\"></PROPERTY>"
      "</INSTANCE>");
}

TEST(InstanceFormat, TellsTheOriginWhereItIsWanted) {
  test::Everything instance;
  const cimxml::NameSet names({"Text"});
  EXPECT_EQ(write(instance, {.hasClassOrigin = true, .propertyList = &names}),
            "<INSTANCE CLASSNAME=\"Test_Everything\"><PROPERTY NAME=\"Text\" TYPE=\"string\""
            " CLASSORIGIN=\"Test_Thing\"></PROPERTY></INSTANCE>");
}

TEST(InstanceFormat, StaysWithinTheAncestorsProperties) {
  test::Everything instance;
  core::ClassDeclaration ancestor;
  ancestor.name = "Test_Thing";
  ancestor.properties = {{"Text", core::kCimString, true, "", "Test_Thing"}};
  EXPECT_EQ(
      write(instance, {.ancestor = &ancestor}),
      "<INSTANCE CLASSNAME=\"Test_Everything\"><PROPERTY NAME=\"Text\" TYPE=\"string\"></PROPERTY>"
      "</INSTANCE>");
}

TEST(InstanceFormat, FindsPropertiesThatStandElsewhere) {
  test::Everything instance;
  core::ClassDeclaration declaration = test::declareEverything();
  std::swap(declaration.properties.front(), declaration.properties.back());
  EXPECT_EQ(write(instance, declaration, {}), kEmptyInstance);
}

TEST(InstanceFormat, LeavesOutWhatTheClassDoesNotDeclare) {
  test::Everything instance;
  core::ClassDeclaration declaration = test::declareEverything();
  declaration.properties.resize(3);
  declaration.properties[1].type = core::kCimStringArray;  // no such property
  EXPECT_EQ(
      write(instance, declaration, {}),
      "<INSTANCE CLASSNAME=\"Test_Everything\"><PROPERTY NAME=\"Text\" TYPE=\"string\"></PROPERTY>"
      "<PROPERTY NAME=\"Signed\" TYPE=\"sint8\"></PROPERTY></INSTANCE>");
}

TEST(InstanceFormat, WritesAPropertyThatIsOverriddenOnce) {
  test::Everything instance;
  core::CimPropertyString again("Text", &instance);
  again.setValue("later");
  EXPECT_THAT(write(instance),
              testing::AllOf(testing::Not(testing::HasSubstr("\"Text\" TYPE=\"string\"></")),
                             testing::HasSubstr("<VALUE>later</VALUE>")));
}

TEST(InstanceFormat, AsksForNoMemoryForAProperty) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  test::Everything instance;
  instance.Text.setValue(std::string(1000, 'x') + "<&>");
  instance.Byte.setValue(1);
  instance.Signed.setValue(-1);
  instance.Short.setValue(2);
  instance.Word.setValue(3);
  instance.Long.setValue(std::numeric_limits<std::uint64_t>::max());
  instance.Truth.setValue(1);
  instance.Shorts.setValue({1, 2, 3});
  instance.Texts.setValue({std::string(100, 'y'), std::string(100, 'z')});
  const InstanceFormat format(test::declareEverything(), {}, "root/x");
  cimxml::Buffer out;
  format.append(out, instance);
  out.clear();

  const std::size_t before = test::countAllocations();
  format.append(out, instance);
  EXPECT_EQ(test::countAllocations() - before, 1U) << "the cursor over the properties";
}

}  // namespace
