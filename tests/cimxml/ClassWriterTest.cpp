#include <gmock/gmock.h>

#include "cimxml/Buffer.h"
#include "cimxml/ClassWriter.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::ClassFormat;
using core::ParameterDirection;

core::ClassDeclaration declareService() {
  core::ClassDeclaration declaration;
  declaration.name = "Test_Service";
  declaration.superclass = "CIM_Service";
  declaration.properties = {
      {"Name", core::kCimString, true, "", "CIM_Service"},
      {"States", core::kCimUint16Array, false, "", "Test_Service"},
      {"Host", core::kCimReference, false, "CIM_System", "Test_Service"},
  };
  declaration.methods = {
      {"Start", core::kCimUint32, {}, "CIM_Service"},
      {"Install",
       core::kCimUint32,
       {{"Job", core::kCimReference, ParameterDirection::Job, "CIM_ConcreteJob"},
        {"URI", core::kCimString, ParameterDirection::In, ""},
        {"Codes", core::kCimUint16Array, ParameterDirection::Out, ""}},
       "Test_Service"},
  };
  return declaration;
}

std::string write(const core::ClassDeclaration& declaration, const ClassFormat& format = {}) {
  cimxml::Buffer out;
  cimxml::appendClass(out, declaration, format);
  return out;
}

constexpr const char* kIn =
    "<QUALIFIER NAME=\"In\" TYPE=\"boolean\" OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER>";
constexpr const char* kOut =
    "<QUALIFIER NAME=\"In\" TYPE=\"boolean\" OVERRIDABLE=\"false\"><VALUE>FALSE</VALUE></QUALIFIER>"
    "<QUALIFIER NAME=\"Out\" TYPE=\"boolean\" "
    "OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER>";

TEST(ClassWriter, WritesAClassWithItsQualifiers) {
  EXPECT_EQ(
      write(declareService()),
      std::string(
          "<CLASS NAME=\"Test_Service\" SUPERCLASS=\"CIM_Service\">"
          "<PROPERTY NAME=\"Name\" TYPE=\"string\" PROPAGATED=\"true\">"
          "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
          "<VALUE>TRUE</VALUE></QUALIFIER></PROPERTY>"
          "<PROPERTY.ARRAY NAME=\"States\" TYPE=\"uint16\"></PROPERTY.ARRAY>"
          "<PROPERTY.REFERENCE NAME=\"Host\" REFERENCECLASS=\"CIM_System\"></PROPERTY.REFERENCE>"
          "<METHOD NAME=\"Start\" TYPE=\"uint32\" PROPAGATED=\"true\"></METHOD>"
          "<METHOD NAME=\"Install\" TYPE=\"uint32\">"
          "<PARAMETER.REFERENCE NAME=\"Job\" REFERENCECLASS=\"CIM_ConcreteJob\">") +
          kOut + "</PARAMETER.REFERENCE><PARAMETER NAME=\"URI\" TYPE=\"string\">" + kIn +
          "</PARAMETER><PARAMETER.ARRAY NAME=\"Codes\" TYPE=\"uint16\">" + kOut +
          "</PARAMETER.ARRAY></METHOD></CLASS>");
}

TEST(ClassWriter, LeavesQualifiersOut) {
  const cimxml::NameSet names({"name"});
  EXPECT_EQ(
      write(declareService(), {.hasQualifiers = false, .propertyList = &names}),
      "<CLASS NAME=\"Test_Service\" SUPERCLASS=\"CIM_Service\">"
      "<PROPERTY NAME=\"Name\" TYPE=\"string\" PROPAGATED=\"true\"></PROPERTY>"
      "<METHOD NAME=\"Start\" TYPE=\"uint32\" PROPAGATED=\"true\"></METHOD>"
      "<METHOD NAME=\"Install\" TYPE=\"uint32\">"
      "<PARAMETER.REFERENCE NAME=\"Job\" REFERENCECLASS=\"CIM_ConcreteJob\"></PARAMETER.REFERENCE>"
      "<PARAMETER NAME=\"URI\" TYPE=\"string\"></PARAMETER>"
      "<PARAMETER.ARRAY NAME=\"Codes\" TYPE=\"uint16\"></PARAMETER.ARRAY></METHOD></CLASS>");
}

TEST(ClassWriter, LeavesOutWhatIsInheritedAndTellsOrigins) {
  core::ClassDeclaration declaration = declareService();
  declaration.methods.back().parameters.clear();
  EXPECT_EQ(
      write(declaration, {.isLocalOnly = true, .hasQualifiers = false, .hasClassOrigin = true}),
      "<CLASS NAME=\"Test_Service\" SUPERCLASS=\"CIM_Service\">"
      "<PROPERTY.ARRAY NAME=\"States\" TYPE=\"uint16\" "
      "CLASSORIGIN=\"Test_Service\"></PROPERTY.ARRAY>"
      "<PROPERTY.REFERENCE NAME=\"Host\" REFERENCECLASS=\"CIM_System\""
      " CLASSORIGIN=\"Test_Service\"></PROPERTY.REFERENCE>"
      "<METHOD NAME=\"Install\" TYPE=\"uint32\" CLASSORIGIN=\"Test_Service\"></METHOD></CLASS>");
}

TEST(ClassWriter, WritesAnAssociationAtTheTop) {
  core::ClassDeclaration declaration;
  declaration.name = "CIM_Dependency";
  declaration.isAssociation = true;
  EXPECT_EQ(write(declaration),
            "<CLASS NAME=\"CIM_Dependency\"><QUALIFIER NAME=\"Association\" TYPE=\"boolean\""
            " OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER></CLASS>");
}

}  // namespace
