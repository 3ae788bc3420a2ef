#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <limits>
#include <memory>

#include "Utils/Clock.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using core::CimProperty;
using test::IsAssertion;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;

template <class Property, class Value>
std::string textOf(Value value) {
  Property property("Some", nullptr);
  property.setValue(value);
  return property.toString();
}

TEST(CimPropertyTypes, HaveTheirCodes) {
  EXPECT_EQ(core::CimPropertyUint8("x", nullptr).getType(), 0U);
  EXPECT_EQ(core::CimPropertySint8("x", nullptr).getType(), 2U);
  EXPECT_EQ(core::CimPropertyUint16("x", nullptr).getType(), 4U);
  EXPECT_EQ(core::CimPropertyUint16_arr("x", nullptr).getType(), 5U);
  EXPECT_EQ(core::CimPropertyUint32("x", nullptr).getType(), 8U);
  EXPECT_EQ(core::CimPropertyUint64("x", nullptr).getType(), 12U);
  EXPECT_EQ(core::CimPropertyString("x", nullptr).getType(), 16U);
  EXPECT_EQ(core::CimPropertyString_arr("x", nullptr).getType(), 17U);
  EXPECT_EQ(core::CimPropertyBoolean("x", nullptr).getType(), 18U);
  EXPECT_EQ(core::CimPropertyDatetime("x", nullptr).getType(), 24U);
  EXPECT_EQ(core::CimPropertyRef("x", nullptr).getType(), 26U);
}

TEST(CimPropertyTypes, PrintTheirValues) {
  EXPECT_EQ(textOf<core::CimPropertyUint8>(std::uint8_t{255}), "255");
  EXPECT_EQ(textOf<core::CimPropertyUint16>(std::uint16_t{65535}), "65535");
  EXPECT_EQ(textOf<core::CimPropertyUint32>(2147483647U), "2147483647");
  EXPECT_EQ(textOf<core::CimPropertyUint64>(std::numeric_limits<std::uint64_t>::max()),
            "18446744073709551615");
  EXPECT_EQ(textOf<core::CimPropertyString>("a \"b\" %s"), "a \"b\" %s");
}

TEST(CimPropertyTypes, PrintALargeUint32AsNegative) {
  EXPECT_EQ(textOf<core::CimPropertyUint32>(3000000000U), "-1294967296");
  EXPECT_EQ(textOf<core::CimPropertyUint32>(2147483648U), "-2147483648");
  EXPECT_EQ(textOf<core::CimPropertyUint32>(4294967295U), "-1");
}

TEST(CimPropertyTypes, PrintABooleanAsOneForTheByteOneOnly) {
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{0}), "0");
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{1}), "1");
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{2}), "0");
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{255}), "0");
}

// What holds of every type is said of a CimProperty, once: matchers of each type, and of each
// type's lambdas, would be most of what this file costs to compile.

using Action = std::function<void()>;

void expectFailedAssertion(const Action& action, const std::string& condition) {
  EXPECT_THAT(action, ThrowsExactly<utils::Exception>(IsAssertion("CimPropertyTypes", condition)));
}

void expectNotSupported(const Action& action) {
  EXPECT_THAT(action, ThrowsExactly<utils::ENotSupported>("ENotSupported:"));
}

template <class Property>
class Unprintable : public testing::Test {};

using UnprintableTypes = testing::Types<core::CimPropertySint8, core::CimPropertyDatetime,
                                        core::CimPropertyUint16_arr, core::CimPropertyString_arr>;
TYPED_TEST_SUITE(Unprintable, UnprintableTypes);

void expectNoText(const CimProperty& property) {
  const LogCapture log;

  expectNotSupported([&] { static_cast<void>(property.toString()); });
  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("CimProperty", LogLevel::Debug, "core::CimProperty::toString",
                                     "Operation not supported by property RunDay (" +
                                         std::to_string(property.getType()) + ")"),
                          IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception",
                                     "ENotSupported:")));
}

TYPED_TEST(Unprintable, RefusesToPrintAndSaysSoInTheLog) {
  expectNoText(TypeParam("RunDay", nullptr));
}

template <class Property>
class Unmodifiable : public testing::Test {};

using UnmodifiableTypes = testing::Types<core::CimPropertyDatetime, core::CimPropertyUint16_arr,
                                         core::CimPropertyString_arr, core::CimPropertyRef>;
TYPED_TEST_SUITE(Unmodifiable, UnmodifiableTypes);

void expectNoChange(CimProperty& property, CimProperty& newValue) {
  const LogCapture log;

  expectNotSupported([&] { property.modify(&newValue); });
  expectNotSupported([&] { property.verify(&newValue); });
  const std::string message =
      "Operation not supported by property Some (" + std::to_string(property.getType()) + ")";
  EXPECT_THAT(log.messages("core::CimProperty::modify"), ElementsAre(message));
  EXPECT_THAT(log.messages("core::CimProperty::verify"), ElementsAre(message));
}

TYPED_TEST(Unmodifiable, RefusesModifyAndVerifyAndSaysSoInTheLog) {
  TypeParam property("Some", nullptr);
  property.setModifyEnabled(true);
  TypeParam newValue("Some", nullptr);
  expectNoChange(property, newValue);
}

template <class Property>
class Scalar : public testing::Test {
 protected:
  using Value = std::decay_t<decltype(std::declval<Property>().getValue())>;

  Scalar() {
    m_property.setValue(Value{});
    m_newValue.setValue(other());
  }

  static Value other() {
    if constexpr (std::is_same_v<Value, std::string>) {
      return "other";
    } else {
      return std::numeric_limits<Value>::max();
    }
  }

  Property m_property{"Some", nullptr};
  Property m_newValue{"Some", nullptr};
};

using ScalarTypes =
    testing::Types<core::CimPropertyUint8, core::CimPropertySint8, core::CimPropertyUint16,
                   core::CimPropertyUint32, core::CimPropertyUint64, core::CimPropertyString,
                   core::CimPropertyBoolean>;
TYPED_TEST_SUITE(Scalar, ScalarTypes);

TYPED_TEST(Scalar, IsNullUntilSet) {
  TypeParam property("Some", nullptr);
  EXPECT_TRUE(property.isNull());

  property.setValue(this->other());
  EXPECT_FALSE(property.isNull());
  EXPECT_EQ(property.getValue(), this->other());
}

TYPED_TEST(Scalar, IsSetWithoutAskingAnybody) {
  const LogCapture log;
  TypeParam property("Some", nullptr);
  property.setValue(this->other());
  property.setValue(typename TestFixture::Value{});

  EXPECT_TRUE(log.records().empty());
}

TYPED_TEST(Scalar, IsModifiedWithoutACheck) {
  ASSERT_FALSE(this->m_property.isModifyEnabled());
  this->m_property.modify(&this->m_newValue);

  EXPECT_EQ(this->m_property.getValue(), this->other());
  EXPECT_FALSE(this->m_property.isNull());
}

TYPED_TEST(Scalar, TakesTheValueOfANullPropertyToo) {
  this->m_newValue.setNull();
  this->m_property.modify(&this->m_newValue);

  EXPECT_TRUE(this->m_property.isNull());
  EXPECT_EQ(this->m_property.getValue(), this->other());
}

TYPED_TEST(Scalar, GetsAValueFromOneWhenNull) {
  this->m_property.setNull();
  this->m_property.modify(&this->m_newValue);

  EXPECT_FALSE(this->m_property.isNull());
}

void expectNumberOfListeners(CimProperty& property, CimProperty& newValue) {
  const LogCapture log;
  property.modify(&newValue);

  EXPECT_THAT(log.records(),
              ElementsAre(test::IsRecord(LogLevel::Debug, "core::modifyProperty", "size: 2")));
}

TYPED_TEST(Scalar, LogsTheNumberOfListenersWhenModified) {
  expectNumberOfListeners(this->m_property, this->m_newValue);
}

TYPED_TEST(Scalar, IsNotModifiedByNull) {
  expectFailedAssertion([&] { this->m_property.modify(nullptr); }, "newValue != NULL");
  expectFailedAssertion([&] { core::modifyProperty<TypeParam>(nullptr, &this->m_newValue); },
                        "property != NULL");
  EXPECT_EQ(this->m_property.getValue(), typename TestFixture::Value{});
}

template <class Property, class Source, class Value>
auto valueFrom(Value value) {
  Property property("Some", nullptr);
  Source source("Some", nullptr);
  source.setValue(value);
  property.modify(&source);
  EXPECT_FALSE(property.isNull());
  return property.getValue();
}

TEST(CimPropertyScalar, TakesWhatItHasRoomForOfANumberOfAnotherType) {
  EXPECT_EQ((valueFrom<core::CimPropertyUint8, core::CimPropertyBoolean>(std::uint8_t{1})), 1U);
  EXPECT_EQ((valueFrom<core::CimPropertyBoolean, core::CimPropertyUint8>(std::uint8_t{2})), 2U);
  EXPECT_EQ((valueFrom<core::CimPropertySint8, core::CimPropertyUint8>(std::uint8_t{255})), -1);
  EXPECT_EQ((valueFrom<core::CimPropertyUint16, core::CimPropertyUint64>(0x123456789AULL)),
            0x789AU);
  EXPECT_EQ((valueFrom<core::CimPropertyUint32, core::CimPropertyUint16>(std::uint16_t{7})), 7U);
  EXPECT_EQ((valueFrom<core::CimPropertyUint64, core::CimPropertyUint32>(3000000000U)),
            3000000000U);
}

TEST(CimPropertyScalar, KeepsItsValueWhereTheNewOneHasNoNumberButIsNullLikeIt) {
  core::CimPropertyUint8 number("Some", nullptr);
  number.setValue(3);
  core::CimPropertyString text("Some", nullptr);
  core::CimPropertyUint16_arr array("Some", nullptr);
  for (CimProperty* source : std::initializer_list<CimProperty*>{&text, &array}) {
    EXPECT_NO_THROW(number.modify(source));
    EXPECT_TRUE(number.isNull());
    EXPECT_EQ(number.getValue(), 3);
  }
  text.setValue("7");
  EXPECT_NO_THROW(number.modify(&text));
  EXPECT_FALSE(number.isNull());
  EXPECT_EQ(number.getValue(), 3);
}

TEST(CimPropertyString, TakesTheTextOfAnyPropertyThatHasOne) {
  core::CimPropertyString text("Some", nullptr);
  core::CimPropertyUint16 number("Some", nullptr);
  number.setValue(42);
  text.modify(&number);

  EXPECT_EQ(text.getValue(), "42");
}

TEST(CimPropertyString, KeepsItsTextWhenTheNewOneHasNone) {
  core::CimPropertyString text("Some", nullptr);
  text.setValue("old");
  core::CimPropertySint8 number("Some", nullptr);

  EXPECT_THROW(text.modify(&number), utils::ENotSupported);
  EXPECT_EQ(text.getValue(), "old");
  EXPECT_FALSE(text.isNull());
}

// A text property that may change, to texts of chosen lengths.
class CimPropertyStringLimits : public testing::Test {
 protected:
  CimPropertyStringLimits() { m_text.setModifyEnabled(true); }

  Action verifying(std::size_t length) {
    m_newValue.setValue(std::string(length, 'x'));
    return [this] { m_text.verify(&m_newValue); };
  }

  core::CimPropertyString m_text{"Caption", nullptr};
  core::CimPropertyString m_newValue{"Caption", nullptr};
};

TEST_F(CimPropertyStringLimits, AreNoneAtFirst) {
  EXPECT_EQ(m_text.getMinLength(), 0U);
  EXPECT_EQ(m_text.getMaxLength(), 0U);
  EXPECT_EQ(m_text.getListenerCount(), 2U);
  EXPECT_NO_THROW(verifying(0)());
  EXPECT_NO_THROW(verifying(100'000)());
}

TEST_F(CimPropertyStringLimits, RejectATextBelowTheMinimum) {
  m_text.setMinLength(3);

  EXPECT_THAT(verifying(2), ThrowsExactly<utils::EInvalidParameter>(
                                "Quorvel: EInvalidParameter:Length of Caption property cannot be "
                                "smaller then 3"));
  EXPECT_THROW(verifying(0)(), utils::EInvalidParameter);
  EXPECT_NO_THROW(verifying(3)());
}

TEST_F(CimPropertyStringLimits, RejectATextAboveTheMaximum) {
  m_text.setMaxLength(3);

  EXPECT_THAT(verifying(4), ThrowsExactly<utils::EInvalidParameter>(
                                "Quorvel: EInvalidParameter:Length of Caption property cannot be "
                                "biger then 3"));
  EXPECT_NO_THROW(verifying(3)());
  EXPECT_NO_THROW(verifying(0)());
}

TEST_F(CimPropertyStringLimits, OfZeroRejectNothing) {
  m_text.setMinLength(0);
  m_text.setMaxLength(0);

  EXPECT_NO_THROW(verifying(0)());
  EXPECT_NO_THROW(verifying(100'000)());
}

TEST_F(CimPropertyStringLimits, AreAttachedOnceEach) {
  m_text.setMinLength(1);
  m_text.setMinLength(3);
  m_text.setMaxLength(9);
  m_text.setMaxLength(8);

  EXPECT_EQ(m_text.getListenerCount(), 4U);
  EXPECT_THROW(verifying(2)(), utils::EInvalidParameter);
  EXPECT_THROW(verifying(9)(), utils::EInvalidParameter);
}

TEST_F(CimPropertyStringLimits, DoNotHoldForModifyItself) {
  m_text.setMinLength(3);
  m_newValue.setValue("x");
  m_text.modify(&m_newValue);

  EXPECT_EQ(m_text.getValue(), "x");
}

template <class Listener>
class LengthListener : public testing::Test {};

using LengthListeners = testing::Types<core::CimPropertyString::CheckMinLengthListener,
                                       core::CimPropertyString::CheckMaxLengthListener>;
TYPED_TEST_SUITE(LengthListener, LengthListeners);

TYPED_TEST(LengthListener, NeedsBothProperties) {
  TypeParam listener;
  core::CimPropertyString text("Caption", nullptr);

  expectFailedAssertion([&] { listener.onVerify(nullptr, &text); }, "property != NULL");
  expectFailedAssertion([&] { listener.onVerify(&text, nullptr); }, "newValue != NULL");
  EXPECT_NO_THROW(listener.onVerify(&text, &text));
}

TYPED_TEST(LengthListener, TakesTheLengthOfTheNewTextWhateverTheLimit) {
  TypeParam listener;
  core::CimPropertyString text("Caption", nullptr);
  core::CimPropertyUint16_arr without("Caption", nullptr);
  ASSERT_EQ(text.getMinLength() + text.getMaxLength(), 0U);

  expectNotSupported([&] { listener.onVerify(&text, &without); });
}

TEST(CimPropertyArray, GrowsElementByElement) {
  core::CimPropertyUint16_arr array("Some", nullptr);
  EXPECT_TRUE(array.isNull());
  EXPECT_TRUE(array.getValue().empty());

  array.addValue(3);
  array.addValue(1);
  EXPECT_FALSE(array.isNull());
  EXPECT_THAT(array.getValue(), ElementsAre(3, 1));
}

TEST(CimPropertyArray, TakesOverAWholeList) {
  core::CimPropertyString_arr array("Some", nullptr);
  array.addValue("old");
  array.setValue({"a", "", "a"});

  EXPECT_FALSE(array.isNull());
  EXPECT_THAT(array.getValue(), ElementsAre("a", "", "a"));
}

TEST(CimPropertyArray, IsEmptyButNotNullWhenCleared) {
  core::CimPropertyUint16_arr numbers("Some", nullptr);
  numbers.clear();
  core::CimPropertyString_arr texts("Some", nullptr);
  texts.addValue("x");
  texts.clear();

  EXPECT_FALSE(numbers.isNull());
  EXPECT_FALSE(texts.isNull());
  EXPECT_TRUE(texts.getValue().empty());
}

TEST(CimPropertyDatetime, HoldsTheMomentOfItsConstructionAlthoughNull) {
  const std::uint64_t before = utils::currentMicroseconds();
  const core::CimPropertyDatetime property("InstallDate", nullptr);

  EXPECT_TRUE(property.isNull());
  EXPECT_TRUE(property.getValue().isTimestamp);
  EXPECT_GE(property.getValue().value, before);
  EXPECT_LE(property.getValue().value, utils::currentMicroseconds());
}

TEST(CimPropertyDatetime, TakesAnInterval) {
  core::CimPropertyDatetime property("ElapsedTime", nullptr);
  property.setValue(utils::Datetime::fromSeconds(3));

  EXPECT_FALSE(property.isNull());
  EXPECT_FALSE(property.getValue().isTimestamp);
  EXPECT_EQ(property.getValue().value, 3'000'000U);
}

TEST(CimPropertyText, IsComparedAsItIsPrinted) {
  core::CimPropertyString text("Name", nullptr);
  text.setValue("value");
  EXPECT_TRUE(text.hasText("value"));
  EXPECT_FALSE(text.hasText("Value"));
  core::CimPropertyUint16 number("Number", nullptr);
  number.setValue(12);
  EXPECT_TRUE(number.hasText("12"));
  EXPECT_FALSE(number.hasText("012"));
  const core::CimPropertySint8 without("Short", nullptr);
  EXPECT_THROW(static_cast<void>(without.hasText("0")), utils::ENotSupported);
}

}  // namespace
