#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "core/ClassQualifiers.h"

namespace {

using core::ClassDeclaration;
using core::ClassQualifiers;
using testing::ElementsAre;

constexpr core::ValueName kStates[] = {{"2", "On"}, {"3", "Off"}};
constexpr core::ValueName kResults[] = {{"0", "Done"}};
constexpr core::ElementText kBaseProperties[] = {{"Name", "What it is called."},
                                                 {"State", "Whether it runs.", kStates}};
constexpr core::ElementText kFanProperties[] = {
    {"Speed", "How fast.", {}, core::kPercent, true},
    {"state", "Whether it turns."},
};
constexpr core::ElementText kDepth[] = {{"Depth", "How thoroughly."}};
constexpr core::MethodText kMethods[] = {{"Check", "Looks for faults.", kDepth, kResults}};
constexpr core::ClassText kTexts[] = {
    {"Test_Base", "Anything.", kBaseProperties, kMethods, "2.41.0", true},
    {"Test_Fan", "Moves air.", kFanProperties},
};

// Returns each qualifier as "Name=text,text", and a boolean as "Name" or "!Name".
std::vector<std::string> toTexts(const ClassQualifiers::List& list) {
  std::vector<std::string> texts;
  for (const core::Qualifier& qualifier : list) {
    std::string text(qualifier.declaration->name);
    if (qualifier.declaration->type == core::kCimBoolean) {
      text.insert(0, qualifier.isTrue ? "" : "!");
    }
    char sign = '=';
    for (const std::string_view one : qualifier.texts) {
      text += sign;
      text += one;
      sign = ',';
    }
    texts.push_back(text);
  }
  return texts;
}

// Test_Fan declares State anew and inherits Name and Check; Test_Desk is a plain descendant of it.
class ClassQualifiersTest : public testing::Test {
 protected:
  ClassQualifiersTest() {
    using enum core::ParameterDirection;
    m_texts.add(kTexts);
    const core::MethodDeclaration check{
        "Check",
        core::kCimUint32,
        {{"Depth", core::kCimUint16, In, ""}, {"Faults", core::kCimStringArray, Out, ""}},
        "Test_Base"};
    m_schema.add({"Test_Base",
                  "",
                  false,
                  {{"Name", core::kCimString, false, "", "Test_Base"},
                   {"State", core::kCimUint16, false, "", "Test_Base"}},
                  {check}});
    m_schema.add({"Test_Fan",
                  "Test_Base",
                  false,
                  {{"Name", core::kCimString, true, "", "Test_Fan"},
                   {"State", core::kCimUint16, false, "", "Test_Fan"},
                   {"Speed", core::kCimUint16, false, "", "Test_Fan"}},
                  {check}});
    m_schema.addPlain("Test_Desk", "Test_Fan");
    m_schema.add({"Test_Cools", "", true, {}, {}});
  }

  [[nodiscard]] const ClassDeclaration& get(const char* name) const { return *m_schema.find(name); }

  [[nodiscard]] std::vector<std::string> ofClass(const char* name) const {
    return toTexts(m_qualifiers.ofClass(get(name)));
  }

  [[nodiscard]] std::vector<std::string> ofProperty(const char* name, const char* property,
                                                    ClassQualifiers::Texts shown) const {
    return toTexts(ClassQualifiers(m_schema, m_texts, shown)
                       .ofProperty(get(name), *get(name).findProperty(property)));
  }

  [[nodiscard]] std::vector<std::string> ofProperty(const char* name, const char* property) const {
    return ofProperty(name, property, ClassQualifiers::Texts::Inherited);
  }

  core::CimSchema m_schema;
  core::ClassTexts m_texts;
  ClassQualifiers m_qualifiers{m_schema, m_texts};
};

TEST_F(ClassQualifiersTest, SayWhatAClassIs) {
  EXPECT_THAT(ofClass("Test_Base"),
              ElementsAre("Abstract", "Version=2.41.0", "Description=Anything."));
  EXPECT_THAT(ofClass("Test_Fan"), ElementsAre("Description=Moves air."));
  EXPECT_THAT(ofClass("Test_Desk"), ElementsAre());
  EXPECT_THAT(ofClass("Test_Cools"), ElementsAre("Association"));
}

TEST_F(ClassQualifiersTest, SayWhatAPropertyIs) {
  EXPECT_THAT(ofProperty("Test_Base", "Name"), ElementsAre("Description=What it is called."));
  EXPECT_THAT(ofProperty("Test_Base", "State"),
              ElementsAre("Description=Whether it runs.", "ValueMap=2,3", "Values=On,Off"));
  EXPECT_THAT(ofProperty("Test_Fan", "Speed"),
              ElementsAre("Write", "Description=How fast.", "Units=Percent", "PUnit=percent"));
}

TEST_F(ClassQualifiersTest, InheritWhatAClassDoesNotSayAnew) {
  EXPECT_THAT(ofProperty("Test_Fan", "Name"),
              ElementsAre("Key", "Override=Name", "Description=What it is called."));
  EXPECT_THAT(ofProperty("Test_Fan", "State"),
              ElementsAre("Override=State", "Description=Whether it turns.", "ValueMap=2,3",
                          "Values=On,Off"));
}

TEST_F(ClassQualifiersTest, AreOfTheClassThatDeclaresTheProperty) {
  EXPECT_THAT(ofProperty("Test_Desk", "State"),
              ElementsAre("Description=Whether it turns.", "ValueMap=2,3", "Values=On,Off"));
  EXPECT_THAT(ofProperty("Test_Desk", "Name"),
              ElementsAre("Key", "Description=What it is called."));
}

TEST_F(ClassQualifiersTest, LeaveInheritedTextsOutOnDemand) {
  EXPECT_THAT(ofProperty("Test_Fan", "Name", ClassQualifiers::Texts::Own),
              ElementsAre("Key", "Override=Name"));
  EXPECT_THAT(ofProperty("Test_Fan", "State", ClassQualifiers::Texts::Own),
              ElementsAre("Override=State", "Description=Whether it turns."));
}

TEST_F(ClassQualifiersTest, SayWhatAMethodAndItsParametersAre) {
  const ClassDeclaration& fan = get("Test_Fan");
  const core::MethodDeclaration& check = fan.methods.at(0);
  EXPECT_THAT(toTexts(m_qualifiers.ofMethod(fan, check)),
              ElementsAre("Description=Looks for faults.", "ValueMap=0", "Values=Done"));
  EXPECT_THAT(toTexts(m_qualifiers.ofParameter(check, check.parameters[0])),
              ElementsAre("In", "Description=How thoroughly."));
  EXPECT_THAT(toTexts(m_qualifiers.ofParameter(check, check.parameters[1])),
              ElementsAre("!In", "Out"));
}

TEST_F(ClassQualifiersTest, SayThatAMethodOverridesAnother) {
  ClassDeclaration turbine{"Test_Turbine", "Test_Base", false, {}, get("Test_Base").methods};
  turbine.methods[0].origin = turbine.name;
  m_schema.add(turbine);
  EXPECT_THAT(
      toTexts(m_qualifiers.ofMethod(turbine, turbine.methods[0])),
      ElementsAre("Override=Check", "Description=Looks for faults.", "ValueMap=0", "Values=Done"));
}

}  // namespace
