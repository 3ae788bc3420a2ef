#include <gmock/gmock.h>

#include "client/ClassDescription.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr core::ValueName kStates[] = {{"4", "Running"}, {"5..", "Other"}};
constexpr core::ElementText kProperties[] = {{"State", "How it is.", kStates, core::kPercent}};
constexpr core::ElementText kParameters[] = {{"Names", "Who.", kStates}};
constexpr core::MethodText kMethods[] = {{"Try", "Tries.", kParameters, kStates}};
constexpr core::ClassText kTexts[] = {
    {"Test_Fan", "Moves air.", kProperties, kMethods, "1.2.3", true}};

class ClassDescriptionTest : public testing::Test {
 protected:
  ClassDescriptionTest() {
    using enum core::ParameterDirection;
    m_texts.add(kTexts);
    m_schema.add(
        {"Test_Fan",
         "",
         true,
         {{"State", core::kCimUint16, false, "", "Test_Fan"},
          {"Peer", core::kCimReference, true, "Test_Fan", "Test_Fan"}},
         {{"Try",
           core::kCimUint32,
           {{"Names", core::kCimStringArray, In, ""}, {"Result", core::kCimString, Out, ""}},
           "Test_Fan"}}});
    m_schema.addPlain("Test_Turbine", "Test_Fan");
  }

  [[nodiscard]] client::ClassDescription describe(const char* name) const {
    return client::describeClass(m_schema, m_texts, *m_schema.find(name));
  }

  core::CimSchema m_schema;
  core::ClassTexts m_texts;
};

TEST_F(ClassDescriptionTest, SaysWhatAClassIs) {
  const client::ClassDescription fan = describe("Test_Fan");
  EXPECT_EQ(fan.name, "Test_Fan");
  EXPECT_EQ(fan.superclass, "");
  EXPECT_EQ(fan.description, "Moves air.");
  EXPECT_EQ(fan.version, "1.2.3");
  EXPECT_TRUE(fan.isAbstract);
  EXPECT_TRUE(fan.isAssociation);
}

TEST_F(ClassDescriptionTest, SaysWhatItsPropertiesAre) {
  const client::ClassDescription fan = describe("Test_Fan");
  ASSERT_EQ(fan.properties.size(), 2U);
  EXPECT_EQ(fan.properties[0], (client::ElementDescription{"State",
                                                           "uint16",
                                                           false,
                                                           false,
                                                           "How it is.",
                                                           "Percent",
                                                           {{"4", "Running"}, {"5..", "Other"}}}));
  EXPECT_EQ(fan.properties[1],
            (client::ElementDescription{"Peer", "Test_Fan REF", true, false, "", "", {}}));
}

TEST_F(ClassDescriptionTest, SaysWhatItsMethodsAre) {
  const client::MethodDescription method = describe("Test_Fan").methods.at(0);
  EXPECT_EQ(method.name, "Try");
  EXPECT_EQ(method.type, "uint32");
  EXPECT_EQ(method.description, "Tries.");
  EXPECT_THAT(method.returns, ElementsAre(Pair("4", "Running"), Pair("5..", "Other")));
  ASSERT_EQ(method.parameters.size(), 2U);
  EXPECT_EQ(method.parameters[0].type, "string[]");
  EXPECT_FALSE(method.parameters[0].isOutput);
  EXPECT_TRUE(method.parameters[1].isOutput);
}

TEST_F(ClassDescriptionTest, InheritsWhatItsElementsAreButNotWhatItIs) {
  const client::ClassDescription turbine = describe("Test_Turbine");
  EXPECT_EQ(turbine.description, "");
  EXPECT_FALSE(turbine.isAbstract);
  EXPECT_EQ(turbine.properties, describe("Test_Fan").properties);
  EXPECT_EQ(turbine.methods, describe("Test_Fan").methods);
}

TEST_F(ClassDescriptionTest, FindsPropertiesInAnyCase) {
  const client::ClassDescription fan = describe("Test_Fan");
  EXPECT_EQ(fan.findProperty("STATE"), &fan.properties[0]);
  EXPECT_EQ(fan.findProperty("Name"), nullptr);
}

TEST(NamesOfValues, AreThoseOfNumbers) {
  const client::NamedValues values = {{"0", "Off"}, {"4", "Running"}, {"10..", "Many"}};
  using client::Value;
  EXPECT_EQ(client::findNames(values, Value(4)), Value("Running"));
  EXPECT_EQ(client::findNames(values, Value(11U)), Value("Many"));
  EXPECT_EQ(client::findNames(values, Value(5)), Value());
  EXPECT_EQ(client::findNames(values, Value(false)), Value());
  EXPECT_EQ(client::findNames(values, Value("4")), Value());
  EXPECT_EQ(client::findNames(values, Value()), Value());
  EXPECT_EQ(client::findNames({}, Value(4)), Value());
}

TEST(NamesOfValues, AreThoseOfEachNumberOfAnArray) {
  const client::NamedValues values = {{"4", "Running"}};
  using client::Value;
  EXPECT_EQ(client::findNames(values, Value::array({Value(4), Value(5)})),
            Value::array({Value("Running"), Value()}));
  EXPECT_EQ(client::findNames(values, Value::array({Value(5)})), Value());
  EXPECT_EQ(client::findNames(values, Value::array()), Value());
}

TEST(TypeText, IsThatOfADeclaration) {
  EXPECT_EQ(client::toTypeText("uint16", true, ""), "uint16[]");
  EXPECT_EQ(client::toTypeText("reference", false, "CIM_Job"), "CIM_Job REF");
  EXPECT_EQ(client::toTypeText("reference", false, ""), "reference");
}

}  // namespace
