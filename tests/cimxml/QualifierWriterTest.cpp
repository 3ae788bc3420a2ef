#include <gtest/gtest.h>
#include <string>

#include "cimxml/QualifierWriter.h"

namespace {

using core::QualifierName;

std::string write(const core::Qualifier& qualifier, bool isPropagated = false) {
  cimxml::Buffer out;
  cimxml::appendQualifier(out, qualifier, isPropagated);
  return out;
}

std::string declare(QualifierName name) {
  cimxml::Buffer out;
  cimxml::appendQualifierDeclaration(out, core::getQualifier(name));
  return out;
}

TEST(QualifierWriter, WritesValuesOfEachType) {
  EXPECT_EQ(write({&core::getQualifier(QualifierName::In), false, {}}),
            "<QUALIFIER NAME=\"In\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
            "<VALUE>FALSE</VALUE></QUALIFIER>");
  EXPECT_EQ(write({&core::getQualifier(QualifierName::PUnit), false, {"bit / second"}}),
            "<QUALIFIER NAME=\"PUnit\" TYPE=\"string\">"
            "<VALUE>bit / second</VALUE></QUALIFIER>");
  EXPECT_EQ(write({&core::getQualifier(QualifierName::ValueMap), false, {"0", ".."}}),
            "<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\">"
            "<VALUE.ARRAY><VALUE>0</VALUE><VALUE>..</VALUE></VALUE.ARRAY></QUALIFIER>");
}

TEST(QualifierWriter, TellsWhatIsInherited) {
  EXPECT_EQ(write({&core::getQualifier(QualifierName::Key), true, {}}, true),
            "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" PROPAGATED=\"true\" OVERRIDABLE=\"false\">"
            "<VALUE>TRUE</VALUE></QUALIFIER>");
}

TEST(QualifierWriter, EscapesTexts) {
  EXPECT_EQ(write({&core::getQualifier(QualifierName::Override), false, {"<&\">"}}),
            "<QUALIFIER NAME=\"Override\" TYPE=\"string\" TOSUBCLASS=\"false\">"
            "<VALUE>&lt;&amp;&quot;&gt;</VALUE></QUALIFIER>");
}

TEST(QualifierWriter, WritesDeclarationsWithScopeFlavorAndDefault) {
  EXPECT_EQ(declare(QualifierName::Key),
            "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" ISARRAY=\"false\" "
            "OVERRIDABLE=\"false\"><SCOPE REFERENCE=\"true\" PROPERTY=\"true\"/>"
            "<VALUE>FALSE</VALUE></QUALIFIER.DECLARATION>");
  EXPECT_EQ(declare(QualifierName::In),
            "<QUALIFIER.DECLARATION NAME=\"In\" TYPE=\"boolean\" ISARRAY=\"false\" "
            "OVERRIDABLE=\"false\"><SCOPE PARAMETER=\"true\"/>"
            "<VALUE>TRUE</VALUE></QUALIFIER.DECLARATION>");
}

TEST(QualifierWriter, WritesDeclarationsWithoutAValueWhereItIsNull) {
  EXPECT_EQ(declare(QualifierName::Values),
            "<QUALIFIER.DECLARATION NAME=\"Values\" TYPE=\"string\" ISARRAY=\"true\" "
            "TRANSLATABLE=\"true\"><SCOPE PROPERTY=\"true\" METHOD=\"true\" PARAMETER=\"true\"/>"
            "</QUALIFIER.DECLARATION>");
  EXPECT_EQ(declare(QualifierName::Description),
            "<QUALIFIER.DECLARATION NAME=\"Description\" TYPE=\"string\" ISARRAY=\"false\" "
            "TRANSLATABLE=\"true\"><SCOPE CLASS=\"true\" ASSOCIATION=\"true\" REFERENCE=\"true\" "
            "PROPERTY=\"true\" METHOD=\"true\" PARAMETER=\"true\" INDICATION=\"true\"/>"
            "</QUALIFIER.DECLARATION>");
}

}  // namespace
