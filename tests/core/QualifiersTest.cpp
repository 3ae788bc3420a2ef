#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "core/Qualifiers.h"

namespace {

using core::QualifierDeclaration;
using core::QualifierName;

std::vector<std::string> names() {
  std::vector<std::string> texts;
  for (const QualifierDeclaration& qualifier : core::getQualifiers()) {
    texts.emplace_back(qualifier.name);
  }
  return texts;
}

TEST(Qualifiers, AreListedByName) {
  EXPECT_THAT(names(), testing::ElementsAre("Abstract", "Association", "Description", "In", "Key",
                                            "Out", "Override", "PUnit", "Units", "ValueMap",
                                            "Values", "Version", "Write"));
}

TEST(Qualifiers, AreFoundInAnyCase) {
  ASSERT_NE(core::findQualifier("valuemap"), nullptr);
  EXPECT_EQ(core::findQualifier("valuemap")->name, "ValueMap");
  EXPECT_EQ(core::findQualifier("ValueMap"), &core::getQualifier(QualifierName::ValueMap));
}

TEST(Qualifiers, AreNotFoundUnderOtherNames) {
  EXPECT_EQ(core::findQualifier(""), nullptr);
  EXPECT_EQ(core::findQualifier("Value"), nullptr);
  EXPECT_EQ(core::findQualifier("ValueMap "), nullptr);
  EXPECT_EQ(core::findQualifier(std::string("Key\0", 4)), nullptr);
}

TEST(Qualifiers, HaveTheTypesOfTheStandard) {
  EXPECT_EQ(core::getQualifier(QualifierName::Key).type, core::kCimBoolean);
  EXPECT_EQ(core::getQualifier(QualifierName::Description).type, core::kCimString);
  EXPECT_EQ(core::getQualifier(QualifierName::Values).type, core::kCimStringArray);
  EXPECT_TRUE(core::getQualifier(QualifierName::In).isTrueByDefault);
  EXPECT_FALSE(core::getQualifier(QualifierName::Out).isTrueByDefault);
}

TEST(Qualifiers, HaveTheScopesOfTheStandard) {
  const core::QualifierScope& key = core::getQualifier(QualifierName::Key).scope;
  EXPECT_TRUE(key.atProperty && key.atReference);
  EXPECT_FALSE(key.atClass || key.atMethod || key.atParameter || key.atAssociation);
  const core::QualifierScope& description = core::getQualifier(QualifierName::Description).scope;
  EXPECT_TRUE(description.atClass && description.atIndication && description.atParameter);
  EXPECT_FALSE(core::getQualifier(QualifierName::Association).scope.atClass);
}

TEST(Qualifiers, HaveTheFlavorsOfTheStandard) {
  EXPECT_FALSE(core::getQualifier(QualifierName::Key).flavor.isOverridable);
  EXPECT_TRUE(core::getQualifier(QualifierName::Key).flavor.isInherited);
  EXPECT_FALSE(core::getQualifier(QualifierName::Abstract).flavor.isInherited);
  EXPECT_TRUE(core::getQualifier(QualifierName::Values).flavor.isTranslatable);
  EXPECT_FALSE(core::getQualifier(QualifierName::ValueMap).flavor.isTranslatable);
}

}  // namespace
