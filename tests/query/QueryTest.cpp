#include <gmock/gmock.h>
#include <string>

#include "query/Query.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Language;
using query::Query;
using test::FakeView;
using testing::ElementsAre;
using testing::Optional;

Query parse(const std::string& text, Language language = Language::Cql) {
  return Query::parse(text, language, test::querySchema());
}

TEST(Query, HasItsClassAndItsProperties) {
  const Query some = parse("SELECT name, Count, Test_Job.NAME FROM test_job");
  EXPECT_EQ(some.fromClass(), "Test_Job");
  EXPECT_THAT(some.selectedProperties(), Optional(ElementsAre("Name", "Count")));
  EXPECT_EQ(parse("SELECT * FROM Test_Job").selectedProperties(), std::nullopt);
  EXPECT_EQ(parse("SELECT Name, j.* FROM Test_Job j").selectedProperties(), std::nullopt);
}

TEST(Query, SelectsInstancesOfItsClassAndThoseBelow) {
  const Query query = parse("SELECT * FROM Test_Thing");
  EXPECT_TRUE(query.matches(FakeView("Test_Thing")));
  EXPECT_TRUE(query.matches(FakeView("Test_Job")));
  EXPECT_FALSE(query.matches(FakeView("Test_Modification")));
}

TEST(Query, SelectsWhatItsConditionIsTrueOf) {
  const Query query = parse("SELECT * FROM Test_Thing WHERE Count > 3");
  EXPECT_TRUE(query.matches(FakeView("Test_Job", {{"Count", test::number(4)}})));
  EXPECT_FALSE(query.matches(FakeView("Test_Job", {{"Count", test::number(3)}})));
  EXPECT_FALSE(query.matches(FakeView("Test_Job")));
  EXPECT_FALSE(parse("SELECT * FROM Test_Thing WHERE NOT Count > 3").matches(FakeView("Test_Job")));
}

TEST(Query, OutlivesItsText) {
  std::string text = "SELECT * FROM Test_Thing WHERE Name = 'x'";
  const Query query = parse(text);
  text.assign(text.size(), '?');
  const Query copy = query;
  EXPECT_TRUE(copy.matches(FakeView("Test_Thing", {{"Name", test::text("x")}})));
}

TEST(Query, IsAConditionAboutAnyInstanceInFql) {
  const Query query = parse("Count = 3", Language::Fql);
  EXPECT_EQ(query.fromClass(), "");
  EXPECT_EQ(query.selectedProperties(), std::nullopt);
  EXPECT_TRUE(query.matches(FakeView("Test_Thing", {{"Count", test::number(3)}})));
  EXPECT_FALSE(query.matches(FakeView("Test_Indication")));
}

TEST(Query, IsRefusedWithItsPlace) {
  EXPECT_EQ(test::faultOf([] { static_cast<void>(parse("SELECT * FROM Test_Thing WHERE x = 1")); }),
            "line 1, column 32: class Test_Thing has no property 'x'");
}

TEST(FindFromClass, NeedsNoSchema) {
  EXPECT_EQ(query::findFromClass("SELECT a FROM Some_Class WHERE b = 1", Language::Wql),
            "Some_Class");
  EXPECT_EQ(query::findFromClass("SELECT", Language::Wql), "");
}

}  // namespace
