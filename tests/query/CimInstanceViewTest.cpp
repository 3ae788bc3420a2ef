#include <gmock/gmock.h>

#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "query/CimInstanceView.h"
#include "query/Comparison.h"
#include "tests/query/QueryModel.h"

namespace {

using query::CimInstanceView;
using query::Comparator;
using query::Truth;
using query::Value;

class Thing : public core::CimInstance {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Job"; }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyUint8 Small{"Small", this};
  core::CimPropertySint8 Delta{"Delta", this};
  core::CimPropertyUint16 Slot{"Slot", this};
  core::CimPropertyUint32 Wide{"Wide", this};
  core::CimPropertyUint64 Count{"Count", this};
  core::CimPropertyBoolean IsGood{"IsGood", this};
  core::CimPropertyDatetime Since{"Since", this};
  core::CimPropertyRef Peer{"Peer", this};
  core::CimPropertyUint16_arr States{"States", this};
  core::CimPropertyString_arr Roles{"Roles", this};
};

class CimInstanceViewTest : public testing::Test {
 protected:
  bool isEqual(const char* property, const Value& value) {
    return query::compare(m_view.getValue(property), Comparator::Equal, value) == Truth::True;
  }

  Thing m_thing;
  CimInstanceView m_view{m_thing, test::querySchema()};
};

TEST_F(CimInstanceViewTest, HasTheValuesOfEachType) {
  m_thing.Name.setValue("x");
  m_thing.Small.setValue(200);
  m_thing.Delta.setValue(-3);
  m_thing.Slot.setValue(65535);
  m_thing.Wide.setValue(4294967295U);
  m_thing.Count.setValue(18446744073709551615U);
  m_thing.IsGood.setValue(1);
  m_thing.Since.setValue(utils::Datetime(5));
  m_thing.Peer.setText("Test_Thing.Name=\"y\"");
  EXPECT_TRUE(isEqual("Name", test::text("x")));
  EXPECT_TRUE(isEqual("Small", test::number(200)));
  EXPECT_TRUE(isEqual("Delta", test::negative(-3)));
  EXPECT_TRUE(isEqual("Slot", test::number(65535)));
  EXPECT_TRUE(isEqual("Wide", test::number(4294967295U)));
  EXPECT_TRUE(isEqual("Count", test::number(18446744073709551615U)));
  EXPECT_TRUE(isEqual("IsGood", test::truth(true)));
  EXPECT_TRUE(isEqual("Since", test::datetime("00000000000000.000005:000")));
  EXPECT_TRUE(isEqual("Peer", test::path("Test_Thing.Name=\"y\"")));
}

TEST_F(CimInstanceViewTest, HasTheElementsOfArrays) {
  m_thing.States.setValue({2, 17});
  m_thing.Roles.setValue({"a"});
  const Value states = m_view.getValue("States");
  ASSERT_EQ(std::get<query::Array>(states.held).size(), 2U);
  EXPECT_EQ(std::get<std::uint64_t>(std::get<query::Array>(states.held)[1].held), 17U);
  const Value roles = m_view.getValue("Roles");
  EXPECT_EQ(std::get<std::string>(std::get<query::Array>(roles.held).at(0).held), "a");
}

TEST_F(CimInstanceViewTest, HasNullForWhatIsNotThere) {
  for (const char* name : {"Name", "Delta", "Since", "Peer", "States", "Nothing"}) {
    EXPECT_TRUE(m_view.getValue(name).isNull()) << name;
  }
}

TEST_F(CimInstanceViewTest, TakesNamesInAnyCase) {
  m_thing.Count.setValue(3);
  EXPECT_TRUE(isEqual("COUNT", test::number(3)));
}

TEST_F(CimInstanceViewTest, IsOfItsClassAndThoseAbove) {
  EXPECT_TRUE(m_view.isA("test_job"));
  EXPECT_TRUE(m_view.isA("Test_Thing"));
  EXPECT_FALSE(m_view.isA("Test_Indication"));
}

}  // namespace
