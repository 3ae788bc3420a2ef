#include <gmock/gmock.h>
#include <optional>
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
  std::optional<Query> query = parse(text);
  const Query copy = *query;
  query.reset();
  text.assign(text.size(), '?');
  EXPECT_TRUE(copy.matches(FakeView("Test_Thing", {{"Name", test::text("x")}})));
}

TEST(Query, IsAConditionAboutAnyInstanceInFql) {
  const Query query = parse("Count = 3", Language::Fql);
  EXPECT_EQ(query.fromClass(), "");
  EXPECT_EQ(query.selectedProperties(), std::nullopt);
  EXPECT_TRUE(query.matches(FakeView("Test_Thing", {{"Count", test::number(3)}})));
  EXPECT_FALSE(query.matches(FakeView("Test_Indication")));
}

TEST(Query, IsAConditionAboutAClassInFql) {
  const Query query = Query::parse("count = 3", Language::Fql, test::querySchema(), "Test_Thing");
  EXPECT_EQ(query.fromClass(), "Test_Thing");
  EXPECT_TRUE(query.matches(FakeView("Test_Job", {{"Count", test::number(3)}})));
  EXPECT_EQ(test::faultOf([] {
              static_cast<void>(
                  Query::parse("Cuont = 3", Language::Fql, test::querySchema(), "Test_Thing"));
            }),
            "line 1, column 1: class Test_Thing has no property 'Cuont'; did you mean Count?");
}

TEST(Query, IsRefusedWithItsPlace) {
  EXPECT_EQ(test::faultOf([] { static_cast<void>(parse("SELECT * FROM Test_Thing WHERE x = 1")); }),
            "line 1, column 32: class Test_Thing has no property 'x'");
}

TEST(FindFromClass, NeedsNoSchema) {
  EXPECT_EQ(query::findFromClass("SELECT a from Some_Class WHERE b ?"), "Some_Class");
  for (const char* text : {"", "SELECT", "SELECT * FROM", "SELECT * FROM 'x", "SELECT ' FROM A"}) {
    EXPECT_EQ(query::findFromClass(text), "") << text;
  }
}

}  // namespace
