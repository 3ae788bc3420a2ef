#include <gmock/gmock.h>
#include <type_traits>

#include "core/CimPropertyRef.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using core::CimPropertyRef;
using test::IsRecordOf;
using test::LogLevel;

TEST(CimPropertyRef, IsNullAndEmptyAtFirst) {
  const CimPropertyRef reference("Antecedent", nullptr);

  EXPECT_TRUE(reference.isNull());
  EXPECT_EQ(reference.getTarget(), nullptr);
  EXPECT_EQ(reference.toString(), "");
  EXPECT_EQ(reference.getType(), 26U);
}

TEST(CimPropertyRef, PrintsItsText) {
  CimPropertyRef reference("Antecedent", nullptr);
  reference.setText("CIM_Fan.Name=\"x\"");

  EXPECT_FALSE(reference.isNull());
  EXPECT_EQ(reference.toString(), "CIM_Fan.Name=\"x\"");
}

TEST(CimPropertyRef, PrintsThePathOfItsTargetWhateverItsText) {
  test::Instance target("a\"b");
  CimPropertyRef reference("Antecedent", nullptr);
  reference.setTarget(&target);

  EXPECT_FALSE(reference.isNull());
  EXPECT_EQ(reference.getTarget(), &target);
  EXPECT_EQ(reference.toString(), R"(Test_Thing.Name="a\"b")");
  reference.setText("something else");
  EXPECT_EQ(reference.toString(), R"(Test_Thing.Name="a\"b")");
}

TEST(CimPropertyRef, PrintsItsTextAgainWithoutATarget) {
  test::Instance target("x");
  CimPropertyRef reference("Antecedent", nullptr);
  reference.setText("text");
  reference.setTarget(&target);
  reference.setTarget(nullptr);

  EXPECT_EQ(reference.toString(), "text");
}

TEST(CimPropertyRef, EntersThePropertyListOfItsOwner) {
  test::Instance owner;
  CimPropertyRef reference("Antecedent", &owner);

  EXPECT_EQ(reference.getOwner(), &owner);
  EXPECT_EQ(owner.getProperty("Antecedent"), &reference);
}

TEST(CimPropertyRef, IsNeitherVerifiedNorModified) {
  CimPropertyRef reference("Antecedent", nullptr);
  reference.setModifyEnabled(true);
  CimPropertyRef newValue("Antecedent", nullptr);
  const auto refuses = test::ThrowsExactly<utils::ENotSupported>("ENotSupported:");
  const test::LogCapture log;

  EXPECT_THAT([&] { reference.verify(&newValue); }, refuses);
  EXPECT_THAT([&] { reference.modify(&newValue); }, refuses);
  EXPECT_THAT([&] { reference.verify(nullptr); }, refuses);
  EXPECT_THAT(
      log.records(),
      testing::IsSupersetOf({IsRecordOf("CimProperty", LogLevel::Debug, "core::CimProperty::verify",
                                        "Operation not supported by property Antecedent (26)"),
                             IsRecordOf("CimProperty", LogLevel::Debug, "core::CimProperty::modify",
                                        "Operation not supported by property Antecedent (26)")}));
}

TEST(CimPropertyRefT, IsAReference) {
  test::Instance target("x");
  core::CimPropertyRefT<test::Instance> reference("Dependent", nullptr);
  reference.setTarget(&target);

  EXPECT_EQ(reference.getType(), 26U);
  EXPECT_EQ(reference.toString(), "Test_Thing.Name=\"x\"");
  EXPECT_EQ(sizeof reference, sizeof(CimPropertyRef));
}

class Fan : public test::Instance {
 public:
  static constexpr const char* kClassName = "Test_Fan";
};

TEST(CimPropertyRefT, KnowsTheClassOfItsTarget) {
  const core::CimPropertyRefT<Fan> reference("Dependent", nullptr);
  EXPECT_EQ(reference.getReferenceClass(), "Test_Fan");
}

// A pointer to an operation has the type of the class that defines it last.
TEST(CimPropertyRefT, OverridesNoOperation) {
  using Reference = core::CimPropertyRefT<Fan>;
  EXPECT_TRUE(
      (std::is_same_v<decltype(&Reference::toString), std::string (CimPropertyRef::*)() const>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(&Reference::getType), std::uint32_t (CimPropertyRef::*)() const>));
  using Change = void (core::CimProperty::*)(core::CimProperty*);
  EXPECT_TRUE((std::is_same_v<decltype(&Reference::modify), Change>));
  EXPECT_TRUE((std::is_same_v<decltype(&Reference::verify), Change>));
  EXPECT_EQ(test::slotOf(&CimPropertyRef::toString), 2U);
  EXPECT_EQ(test::slotOf(&CimPropertyRef::getType), 3U);
}

TEST(CimPropertyRef, HasTheVirtualOperationsOfAPropertyAndNoOther) {
  struct Extended : CimPropertyRef {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 6U);
}

TEST(CimPropertyRefT, FixesNoClassWhereItHasNoName) {
  const CimPropertyRef untyped("Dependent", nullptr);
  EXPECT_EQ(untyped.getReferenceClass(), "");
  const core::CimPropertyRefT<test::Instance> unnamed("Dependent", nullptr);
  EXPECT_EQ(unnamed.getReferenceClass(), "");
}

}  // namespace
