#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <ostream>

#include "Utils/Exception.h"
#include "core/CimProperty.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/support/Throws.h"

namespace {

using core::CimProperty;
using test::ThrowsExactly;

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

}  // namespace
