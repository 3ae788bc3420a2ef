#include <gmock/gmock.h>

#include "client/Snapshot.h"
#include "tests/client/EveryType.h"
#include "tests/client/ValuePrinter.h"

namespace {

using client::NullProperties;
using client::PropertySnapshot;
using client::Value;

class SnapshotTest : public testing::Test {
 protected:
  Value valuesOf(NullProperties nulls) {
    return client::toValue(client::snapshotOf(m_instance.getProperties()), nulls);
  }

  test::EveryType m_instance;
};

TEST_F(SnapshotTest, HasTheValuesOfEveryType) {
  m_instance.fill();
  EXPECT_EQ(valuesOf(NullProperties::Left),
            Value::object({{"Id", "one"},
                           {"Small", 255},
                           {"Signed", -128},
                           {"Number", 65535},
                           {"Numbers", std::vector<int>{2, 32768}},
                           {"Long", 4294967295U},
                           {"Longest", 18446744073709551615U},
                           {"Texts", std::vector<std::string>{"a", "b \"c\""}},
                           {"Truth", true},
                           {"Time", "00000000000500.000000:000"},
                           {"Reference", "C.K=\"v\""}}));
}

TEST_F(SnapshotTest, TellsDatesAndReferencesFromTexts) {
  EXPECT_EQ(client::snapshotOf(m_instance.Id).kind, PropertySnapshot::Kind::Value);
  EXPECT_EQ(client::snapshotOf(m_instance.Time).kind, PropertySnapshot::Kind::Datetime);
  EXPECT_EQ(client::snapshotOf(m_instance.Reference).kind, PropertySnapshot::Kind::Reference);
}

TEST_F(SnapshotTest, ShowsNullOfEveryTypeOnlyWhenAsked) {
  EXPECT_EQ(valuesOf(NullProperties::Left), Value::object());
  const Value all = valuesOf(NullProperties::Shown);
  for (const char* name : {"Id", "Small", "Signed", "Number", "Numbers", "Long", "Longest", "Texts",
                           "Truth", "Time", "Reference"}) {
    ASSERT_NE(all.find(name), nullptr) << name;
    EXPECT_TRUE(all.find(name)->isNull()) << name;
  }
}

TEST_F(SnapshotTest, HasEmptyValuesAsThemselves) {
  m_instance.Numbers.setValue({});
  m_instance.Truth.setValue(0);
  EXPECT_EQ(client::snapshotOf(m_instance.Numbers).value, Value::array());
  EXPECT_EQ(client::snapshotOf(m_instance.Truth).value, Value(false));
}

TEST_F(SnapshotTest, OfAnInstanceHasItsPath) {
  m_instance.Id.setKey();
  m_instance.Id.setValue("one");
  EXPECT_EQ(client::toValue(client::snapshotOf(m_instance), NullProperties::Left),
            Value::object({{"path", "Every_Type.Id=\"one\""},
                           {"properties", Value::object({{"Id", "one"}})}}));
}

TEST_F(SnapshotTest, GivesWhatIsMissedForWhatIsNotThere) {
  const client::InstanceSnapshot instance = {
      "C", "C.K=1", {{"Text", PropertySnapshot::Kind::Value, Value("a")}}};
  EXPECT_EQ(instance.value<std::string>("Text"), "a");
  EXPECT_EQ(instance.value<unsigned>("Text", 3), 3U);
  EXPECT_EQ(instance.value<std::string>("Other", "none"), "none");
  EXPECT_EQ(instance.find("Other"), nullptr);
}

}  // namespace
