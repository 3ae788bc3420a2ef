// The rules that guard every property: listeners, verification, null states.

#include <gmock/gmock.h>

#include "core/CimProperty.h"
#include "core/CimPropertyTypes.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

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

TEST(CimProperty, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(test::slotOf(&CimProperty::toString), 2U);
  EXPECT_EQ(test::slotOf(&CimProperty::getType), 3U);
  EXPECT_EQ(test::slotOf(&CimProperty::modify), 4U);
  EXPECT_EQ(test::slotOf(&CimProperty::verify), 5U);
  EXPECT_EQ(test::slotOf(&core::CimPropertyUint16_arr::clear), 6U);
  EXPECT_EQ(test::slotOf(&core::CimPropertyString_arr::clear), 6U);
  EXPECT_EQ(test::slotOf(&CimProperty::Listener::onModify), 0U);
  EXPECT_EQ(test::slotOf(&CimProperty::Listener::onVerify), 1U);
  struct Extended : CimProperty::Listener {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 4U);
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
  void onModify(CimProperty*, CimProperty*) override { throw utils::EForbidden("too late"); }
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

TEST_F(CimPropertyListeners, EndAChangeByThrowing) {
  m_property.attachListener(&m_first);
  m_property.attachListener(&m_objector);
  m_property.attachListener(&m_second);
  m_newValue.setNull();
  EXPECT_THAT([&] { m_property.modify(&m_newValue); },
              ThrowsExactly<utils::EForbidden>("Quorvel: EForbidden:too late"));
  EXPECT_THAT(m_notes, ElementsAre("first modify old to new"));
  EXPECT_EQ(m_property.getValue(), "old");
  EXPECT_FALSE(m_property.isNull());
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
