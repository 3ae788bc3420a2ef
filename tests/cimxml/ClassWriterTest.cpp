#include <gmock/gmock.h>
#include <span>

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

constexpr core::ValueName kStates[] = {{"4", "Up & running"}};
constexpr core::ElementText kProperties[] = {{"States", "How it is.", kStates}};
constexpr core::ClassText kTexts[] = {{"Test_Service", "Serves <tests>.", kProperties}};

std::string write(const core::ClassDeclaration& declaration, const ClassFormat& format) {
  cimxml::Buffer out;
  cimxml::appendClass(out, declaration, format);
  return out;
}

// Writes it with qualifiers, those of the texts included.
std::string writeQualified(const core::ClassDeclaration& declaration,
                           std::span<const core::ClassText> table = {}) {
  const core::CimSchema schema;
  core::ClassTexts texts;
  texts.add(table);
  const core::ClassQualifiers qualifiers(schema, texts);
  return write(declaration, {.qualifiers = &qualifiers});
}

constexpr const char* kIn =
    "<QUALIFIER NAME=\"In\" TYPE=\"boolean\" OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER>";
constexpr const char* kOut =
    "<QUALIFIER NAME=\"In\" TYPE=\"boolean\" OVERRIDABLE=\"false\"><VALUE>FALSE</VALUE></QUALIFIER>"
    "<QUALIFIER NAME=\"Out\" TYPE=\"boolean\" "
    "OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER>";

TEST(ClassWriter, WritesAClassWithItsQualifiers) {
  EXPECT_EQ(
      writeQualified(declareService()),
      std::string(
          "<CLASS NAME=\"Test_Service\" SUPERCLASS=\"CIM_Service\">"
          "<PROPERTY NAME=\"Name\" TYPE=\"string\" PROPAGATED=\"true\">"
          "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" PROPAGATED=\"true\" OVERRIDABLE=\"false\">"
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

TEST(ClassWriter, WritesWhatThereIsToSayOfTheClass) {
  core::ClassDeclaration declaration = declareService();
  declaration.properties.resize(2);
  declaration.methods.clear();
  EXPECT_EQ(
      writeQualified(declaration, kTexts),
      "<CLASS NAME=\"Test_Service\" SUPERCLASS=\"CIM_Service\">"
      "<QUALIFIER NAME=\"Description\" TYPE=\"string\" TRANSLATABLE=\"true\">"
      "<VALUE>Serves &lt;tests&gt;.</VALUE></QUALIFIER>"
      "<PROPERTY NAME=\"Name\" TYPE=\"string\" PROPAGATED=\"true\">"
      "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" PROPAGATED=\"true\" OVERRIDABLE=\"false\">"
      "<VALUE>TRUE</VALUE></QUALIFIER></PROPERTY>"
      "<PROPERTY.ARRAY NAME=\"States\" TYPE=\"uint16\">"
      "<QUALIFIER NAME=\"Description\" TYPE=\"string\" TRANSLATABLE=\"true\">"
      "<VALUE>How it is.</VALUE></QUALIFIER>"
      "<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\">"
      "<VALUE.ARRAY><VALUE>4</VALUE></VALUE.ARRAY></QUALIFIER>"
      "<QUALIFIER NAME=\"Values\" TYPE=\"string\" TRANSLATABLE=\"true\">"
      "<VALUE.ARRAY><VALUE>Up &amp; running</VALUE></VALUE.ARRAY></QUALIFIER></PROPERTY.ARRAY>"
      "</CLASS>");
}

TEST(ClassWriter, LeavesQualifiersOut) {
  const cimxml::NameSet names({"name"});
  EXPECT_EQ(
      write(declareService(), {.propertyList = &names}),
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
      write(declaration, {.isLocalOnly = true, .hasClassOrigin = true}),
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
  EXPECT_EQ(writeQualified(declaration),
            "<CLASS NAME=\"CIM_Dependency\"><QUALIFIER NAME=\"Association\" TYPE=\"boolean\""
            " OVERRIDABLE=\"false\"><VALUE>TRUE</VALUE></QUALIFIER></CLASS>");
}

}  // namespace
