// The rules that guard every property: listeners, verification, null states.

#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <ostream>

#include "core/CimProperty.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using core::CimProperty;
using core::CimPropertyString;
using core::CimPropertyUint16;
using core::CimPropertyUint32;
using test::HasRecordOf;
using test::IsAssertion;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;

TEST(CimProperty, IsNullAndUnmarkedAtFirst) {
  const CimPropertyString property("Caption", nullptr);

  EXPECT_EQ(property.getName(), "Caption");
  EXPECT_TRUE(property.isNull());
  EXPECT_FALSE(property.isOverridden());
  EXPECT_FALSE(property.isModifyEnabled());
  EXPECT_FALSE(property.isKey());
  EXPECT_EQ(property.getOwner(), nullptr);
  EXPECT_EQ(property.getListenerCount(), 2U);
}

TEST(CimProperty, RefusesAnEmptyName) {
  EXPECT_THAT([] { const CimPropertyString property("", nullptr); },
              ThrowsExactly<utils::Exception>(IsAssertion("CimProperty", "m_name.length() != 0")));
}

TEST(CimProperty, EntersThePropertyListOfItsOwnerInConstructionOrder) {
  test::Instance owner;
  const CimPropertyUint32 first("First", &owner);
  const CimPropertyString second("Second", &owner);

  EXPECT_THAT(test::walk(owner.getProperties().iterator()),
              ElementsAre(&owner.Name, &owner.Size, &first, &second));
  EXPECT_EQ(first.getOwner(), &owner);
}

TEST(CimProperty, LosesItsValueWhenSetToNull) {
  CimPropertyString property("Caption", nullptr);
  property.setValue("x");
  ASSERT_FALSE(property.isNull());

  property.setNull();
  EXPECT_TRUE(property.isNull());
}

// A listener that writes down what it is told.
class Witness : public CimProperty::Listener {
 public:
  Witness(std::string name, std::vector<std::string>& notes)
      : m_name(std::move(name)), m_notes(notes) {}

  void onModify(CimProperty* property, CimProperty* newValue) override {
    m_notes.push_back(m_name + " modify " + property->toString() + " to " + newValue->toString());
  }
  void onVerify(CimProperty* property, CimProperty* newValue) override {
    m_notes.push_back(m_name + " verify " + property->toString() + " to " + newValue->toString());
  }

 private:
  std::string m_name;
  std::vector<std::string>& m_notes;
};

class Objector : public CimProperty::Listener {
 public:
  void onVerify(CimProperty*, CimProperty*) override { throw utils::EForbidden("I object"); }
};

// A property that may be changed, from "old" to "new".
class CimPropertyListeners : public testing::Test {
 protected:
  CimPropertyListeners() {
    m_property.setValue("old");
    m_property.setModifyEnabled(true);
    m_newValue.setValue("new");
  }

  CimPropertyString m_property{"Caption", nullptr};
  CimPropertyString m_newValue{"Caption", nullptr};
  std::vector<std::string> m_notes;
  Witness m_first{"first", m_notes};
  Witness m_second{"second", m_notes};
  Objector m_objector;
};

TEST_F(CimPropertyListeners, AreToldOfAVerificationInTheOrderOfTheirAttachment) {
  m_property.attachListener(&m_first);
  m_property.attachListener(&m_second);
  m_property.verify(&m_newValue);

  EXPECT_THAT(m_notes, ElementsAre("first verify old to new", "second verify old to new"));
  EXPECT_EQ(m_property.getValue(), "old");
}

TEST_F(CimPropertyListeners, AreToldOfAChangeBeforeItIsMade) {
  m_property.attachListener(&m_first);
  m_property.attachListener(&m_second);
  m_property.modify(&m_newValue);

  EXPECT_THAT(m_notes, ElementsAre("first modify old to new", "second modify old to new"));
  EXPECT_EQ(m_property.getValue(), "new");
}

TEST_F(CimPropertyListeners, EndAVerificationByThrowing) {
  m_property.attachListener(&m_first);
  m_property.attachListener(&m_objector);
  m_property.attachListener(&m_second);

  EXPECT_THAT([&] { m_property.verify(&m_newValue); },
              ThrowsExactly<utils::EForbidden>("Quorvel: EForbidden:I object"));
  EXPECT_THAT(m_notes, ElementsAre("first verify old to new"));
  EXPECT_EQ(m_property.getValue(), "old");
}

TEST_F(CimPropertyListeners, ComeBehindTheTwoGeneralOnes) {
  m_property.setModifyEnabled(false);
  m_property.attachListener(&m_first);

  EXPECT_THROW(m_property.verify(&m_newValue), utils::EForbidden);
  EXPECT_TRUE(m_notes.empty());
}

TEST_F(CimPropertyListeners, AreNeverNull) {
  EXPECT_THAT([&] { m_property.attachListener(nullptr); },
              ThrowsExactly<utils::Exception>(IsAssertion("CimProperty", "listener != NULL")));
  EXPECT_EQ(m_property.getListenerCount(), 2U);
}

TEST_F(CimPropertyListeners, AreCountedInTheLog) {
  const LogCapture log;
  m_property.attachListener(&m_first);
  m_property.verify(&m_newValue);
  m_property.modify(&m_newValue);

  EXPECT_THAT(log.records(),
              HasRecordOf("CimProperty", LogLevel::Debug, "core::verifyProperty", "size: 3"));
  EXPECT_THAT(log.messages("core::modifyProperty"), ElementsAre("size: 3"));
}

TEST_F(CimPropertyListeners, DoNothingByDefault) {
  CimProperty::Listener listener;
  m_property.attachListener(&listener);

  EXPECT_NO_THROW(m_property.verify(&m_newValue));
  EXPECT_NO_THROW(m_property.modify(&m_newValue));
}

TEST(VerifyProperty, NeedsBothProperties) {
  CimPropertyString property("Caption", nullptr);

  EXPECT_THAT([&] { core::verifyProperty(nullptr, &property); },
              ThrowsExactly<utils::EInvalidParameter>(
                  "Quorvel: EInvalidParameter:Property cannot be NULL"));
  EXPECT_THAT([&] { core::verifyProperty(&property, nullptr); },
              ThrowsExactly<utils::EInvalidParameter>(
                  "Quorvel: EInvalidParameter:New Property value cannot be NULL"));
  EXPECT_THAT([&] { property.verify(nullptr); },
              ThrowsExactly<utils::EInvalidParameter>(
                  "Quorvel: EInvalidParameter:New Property value cannot be NULL"));
  EXPECT_THAT([] { core::verifyProperty(nullptr, nullptr); },
              ThrowsExactly<utils::EInvalidParameter>(
                  "Quorvel: EInvalidParameter:Property cannot be NULL"));
}

TEST(VerifyTypeListener, NeedsBothProperties) {
  CimProperty::VerifyTypeListener listener;
  CimPropertyString property("Caption", nullptr);

  EXPECT_THAT([&] { listener.onVerify(nullptr, &property); },
              ThrowsExactly<utils::Exception>(IsAssertion("CimProperty", "property != NULL")));
  EXPECT_THAT([&] { listener.onVerify(&property, nullptr); },
              ThrowsExactly<utils::Exception>(IsAssertion("CimProperty", "newValue != NULL")));
}

TEST(VerifyTypeListener, NamesBothTypes) {
  CimProperty::VerifyTypeListener listener;
  CimPropertyString text("Caption", nullptr);
  CimPropertyUint16 number("Caption", nullptr);

  EXPECT_NO_THROW(listener.onVerify(&text, &text));
  EXPECT_THAT([&] { listener.onVerify(&text, &number); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Property type 16 doesn't support assigning value from "
                  "property type 4"));
  EXPECT_THAT([&] { listener.onVerify(&number, &text); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Property type 4 doesn't support assigning value from "
                  "property type 16"));
}

// How to make properties of a type with two values that differ.
struct TypeCase {
  const char* name;
  std::function<std::unique_ptr<CimProperty>()> make;
  std::function<void(CimProperty&, bool isOther)> fill;
};

template <class Property, class Value>
TypeCase typeCase(const char* name, Value one, Value other) {
  return {name, [] { return std::make_unique<Property>("Some", nullptr); },
          [=](CimProperty& property, bool isOther) {
            static_cast<Property&>(property).setValue(isOther ? other : one);
          }};
}

enum class Outcome { Passes, NotAllowed, NotNull, UnsupportedType };

struct RuleCase {
  bool isModifyEnabled;
  bool isNull;
  bool isNewNull;
  bool differs;
  Outcome ofComparable;    // types with a comparison
  Outcome ofIncomparable;  // types without one
};

constexpr RuleCase kRules[] = {
    {false, true, true, false, Outcome::Passes, Outcome::UnsupportedType},
    {false, true, false, true, Outcome::NotAllowed, Outcome::NotAllowed},
    {false, false, true, true, Outcome::NotAllowed, Outcome::NotAllowed},
    {false, false, false, false, Outcome::Passes, Outcome::UnsupportedType},
    {false, false, false, true, Outcome::NotAllowed, Outcome::UnsupportedType},
    {true, true, true, false, Outcome::Passes, Outcome::UnsupportedType},
    {true, true, false, true, Outcome::Passes, Outcome::UnsupportedType},
    {true, false, true, true, Outcome::NotNull, Outcome::NotNull},
    {true, false, false, false, Outcome::Passes, Outcome::UnsupportedType},
    {true, false, false, true, Outcome::Passes, Outcome::UnsupportedType},
};

void expectOutcome(Outcome outcome, std::uint32_t type, const std::function<void()>& verify) {
  switch (outcome) {
    case Outcome::Passes:
      EXPECT_NO_THROW(verify());
      break;
    case Outcome::NotAllowed:
      EXPECT_THAT(verify, ThrowsExactly<utils::EForbidden>(
                              "Quorvel: EForbidden:Modyfying of Some property is not allowed"));
      break;
    case Outcome::NotNull:
      EXPECT_THAT(verify, ThrowsExactly<utils::EInvalidParameter>(
                              "Quorvel: EInvalidParameter:Property Some cannot be a NULL"));
      break;
    case Outcome::UnsupportedType:
      EXPECT_THAT(verify, ThrowsExactly<utils::EForbidden>(
                              "Quorvel: EForbidden:Unsupported type: " + std::to_string(type)));
      break;
  }
}

void PrintTo(const TypeCase& type, std::ostream* stream) {
  *stream << type.name;
}

// Two properties of the type, in the states that a rule names.
class CimPropertyVerify : public testing::TestWithParam<TypeCase> {
 protected:
  void arrange(const RuleCase& rule) {
    m_property = GetParam().make();
    m_newValue = GetParam().make();
    m_property->setModifyEnabled(rule.isModifyEnabled);
    if (!rule.isNull) {
      GetParam().fill(*m_property, false);
    }
    if (!rule.isNewNull) {
      GetParam().fill(*m_newValue, rule.differs);
    }
  }

  std::unique_ptr<CimProperty> m_property;
  std::unique_ptr<CimProperty> m_newValue;
};

class ComparableVerify : public CimPropertyVerify {};
class CimPropertyVerifyRefused : public CimPropertyVerify {};
class IsModifyEnabledListenerOf : public CimPropertyVerify {};

std::string describe(const RuleCase& rule) {
  return std::string(rule.isModifyEnabled ? "modifiable" : "fixed") +
         (rule.isNull ? ", null" : ", value") + (rule.isNewNull ? " to null" : " to value") +
         (rule.differs ? ", differs" : "");
}

TEST_P(ComparableVerify, GoesByNullStatesValueAndMark) {
  for (const RuleCase& rule : kRules) {
    SCOPED_TRACE(describe(rule));
    arrange(rule);
    expectOutcome(rule.ofComparable, m_property->getType(),
                  [this] { m_property->verify(m_newValue.get()); });
    EXPECT_EQ(m_property->isNull(), rule.isNull);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Types, ComparableVerify,
    testing::Values(typeCase<core::CimPropertyUint8, std::uint8_t>("Uint8", 1, 255),
                    typeCase<core::CimPropertyUint16, std::uint16_t>("Uint16", 1, 65535),
                    typeCase<core::CimPropertyUint64, std::uint64_t>("Uint64", 1, 1ULL << 63),
                    typeCase<core::CimPropertyString, std::string>("String", "a", "A")));

TEST_P(CimPropertyVerifyRefused, WhateverTheMarkSays) {
  for (const RuleCase& rule : kRules) {
    SCOPED_TRACE(describe(rule));
    arrange(rule);
    expectOutcome(rule.ofIncomparable, m_property->getType(),
                  [this] { m_property->verify(m_newValue.get()); });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Types, CimPropertyVerifyRefused,
    testing::Values(typeCase<core::CimPropertySint8, std::int8_t>("Sint8", 1, -1),
                    typeCase<core::CimPropertyUint32, std::uint32_t>("Uint32", 1, 2),
                    typeCase<core::CimPropertyBoolean, std::uint8_t>("Boolean", 0, 1)));

TEST_P(IsModifyEnabledListenerOf, RefusesATypeThatHasNoVerification) {
  CimProperty::IsModifyEnabledListener listener;
  for (const RuleCase& rule : kRules) {
    SCOPED_TRACE(describe(rule));
    arrange(rule);
    expectOutcome(rule.ofIncomparable, m_property->getType(),
                  [&] { listener.onVerify(m_property.get(), m_newValue.get()); });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Types, IsModifyEnabledListenerOf,
    testing::Values(
        typeCase<core::CimPropertyUint16_arr, std::vector<std::uint16_t>>("Uint16Array", {1}, {2}),
        typeCase<core::CimPropertyString_arr, std::vector<std::string>>("StringArray", {"a"}, {}),
        typeCase<core::CimPropertyDatetime>("Datetime", utils::Datetime(1), utils::Datetime(2)),
        TypeCase{"Reference",
                 [] { return std::make_unique<core::CimPropertyRef>("Some", nullptr); },
                 [](CimProperty& property, bool isOther) {
                   static_cast<core::CimPropertyRef&>(property).setText(isOther ? "a" : "b");
                 }}));

TEST(CimPropertyVerification, ComesToTheTypeOnlyWhenAChangeIsAllowed) {
  CimPropertyUint16 property("Size", nullptr);
  CimPropertyString newValue("Size", nullptr);
  property.setValue(5);
  newValue.setValue("5");

  EXPECT_THAT([&] { property.verify(&newValue); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Modyfying of Size property is not allowed"));
  property.setModifyEnabled(true);
  EXPECT_THAT([&] { property.verify(&newValue); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Property type 4 doesn't support assigning value from "
                  "property type 16"));
}

TEST(CimPropertyVerification, ChangesNothing) {
  CimPropertyString property("Caption", nullptr);
  CimPropertyString newValue("Caption", nullptr);
  property.setModifyEnabled(true);
  newValue.setValue("new");
  property.verify(&newValue);

  EXPECT_TRUE(property.isNull());
  EXPECT_EQ(property.getValue(), "");
  EXPECT_EQ(newValue.getValue(), "new");
}

}  // namespace
