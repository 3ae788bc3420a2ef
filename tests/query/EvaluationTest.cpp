#include <gmock/gmock.h>
#include <string>

#include "query/Evaluation.h"
#include "query/Parser.h"
#include "query/StatementBinding.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Truth;
using test::FakeView;

Truth evaluate(const std::string& condition, const FakeView& view, const std::string& className,
               query::Language language = query::Language::Cql) {
  const std::string text = "SELECT * FROM " + className + " WHERE " + condition;
  query::Statement statement = query::parseStatement(text, language);
  query::bindStatement(statement, text, test::querySchema());
  return query::evaluate(*statement.where, view);
}

class Evaluation : public testing::Test {
 protected:
  Truth of(const std::string& condition) const {
    return evaluate(condition, m_thing, "Test_Thing");
  }
  Truth ofChange(const std::string& condition) const {
    return evaluate(condition, m_change, "Test_Modification");
  }

  // Since and Peer are NULL.
  const FakeView m_thing{"Test_Job",
                         {{"Name", test::text("eth0")},
                          {"Count", test::number(3)},
                          {"Delta", test::negative(-2)},
                          {"IsGood", test::truth(true)},
                          {"States", test::array({test::number(2), test::number(17)})},
                          {"Roles", test::array({})},
                          {"PercentComplete", test::number(50)}}};
  const FakeView m_change{
      "Test_Modification",
      {{"SourceInstance",
        test::embedded("Test_Job", {{"PercentComplete", test::number(50)},
                                    {"Name", test::text("j")},
                                    {"States", test::array({test::number(17)})}})},
       {"PreviousInstance", test::embedded("Test_Job", {{"PercentComplete", test::number(40)}})}}};
};

TEST_F(Evaluation, Compares) {
  EXPECT_EQ(of("Name = 'eth0'"), Truth::True);
  EXPECT_EQ(of("Count > 3"), Truth::False);
  EXPECT_EQ(of("Delta < Count"), Truth::True);
  EXPECT_EQ(of("-2 = Delta"), Truth::True);
  EXPECT_EQ(of("IsGood"), Truth::True);
  EXPECT_EQ(of("NOT IsGood"), Truth::False);
  EXPECT_EQ(of("IsGood <> TRUE"), Truth::False);
}

TEST_F(Evaluation, KnowsNothingOfWhatIsNull) {
  EXPECT_EQ(of("Since > '20260101120000.000000+000'"), Truth::Unknown);
  EXPECT_EQ(of("NOT Peer = 'Test_Thing.Name=\"x\"'"), Truth::Unknown);
  EXPECT_EQ(of("Peer IS NULL"), Truth::True);
  EXPECT_EQ(of("Peer IS NOT NULL"), Truth::False);
  EXPECT_EQ(of("Test_Thing IS NULL"), Truth::False);
}

TEST_F(Evaluation, HasThreeTruthValues) {
  const std::string unknown = "Peer = Peer";
  EXPECT_EQ(of("TRUE AND " + unknown), Truth::Unknown);
  EXPECT_EQ(of("FALSE AND " + unknown), Truth::False);
  EXPECT_EQ(of(unknown + " AND FALSE"), Truth::False);
  EXPECT_EQ(of("TRUE OR " + unknown), Truth::True);
  EXPECT_EQ(of(unknown + " OR TRUE"), Truth::True);
  EXPECT_EQ(of("FALSE OR " + unknown), Truth::Unknown);
  EXPECT_EQ(of("FALSE OR FALSE"), Truth::False);
  EXPECT_EQ(of("TRUE AND TRUE"), Truth::True);
  EXPECT_EQ(of("NOT (" + unknown + ")"), Truth::Unknown);
}

TEST_F(Evaluation, LooksForPatternsOfTheLanguage) {
  EXPECT_EQ(of("Name LIKE 'eth.*'"), Truth::True);
  EXPECT_EQ(of("Name LIKE 'eth%'"), Truth::False);
  EXPECT_EQ(of("Name NOT LIKE 'x'"), Truth::True);
  EXPECT_EQ(evaluate("Name LIKE 'eth%'", m_thing, "Test_Thing", query::Language::Wql), Truth::True);
  EXPECT_EQ(ofChange("PreviousInstance.Name LIKE '.*'"), Truth::Unknown);
}

TEST_F(Evaluation, LooksIntoArrays) {
  EXPECT_EQ(of("States[1] = 17"), Truth::True);
  EXPECT_EQ(of("States[2] = 17"), Truth::Unknown);
  EXPECT_EQ(of("States[18446744073709551615] IS NULL"), Truth::True);
  EXPECT_EQ(of("ANY States = 17"), Truth::True);
  EXPECT_EQ(of("ANY States[*] = 3"), Truth::False);
  EXPECT_EQ(of("EVERY States > 1"), Truth::True);
  EXPECT_EQ(of("EVERY States = 17"), Truth::False);
  EXPECT_EQ(of("ANY Roles = 'x'"), Truth::False);
  EXPECT_EQ(of("EVERY Roles = 'x'"), Truth::True);
  EXPECT_EQ(of("ANY States < EVERY States"), Truth::False);
  EXPECT_EQ(of("ANY States <= EVERY States"), Truth::True);
}

TEST_F(Evaluation, AsksForTheClass) {
  EXPECT_EQ(of("Test_Thing ISA Test_Job"), Truth::True);
  EXPECT_EQ(of("Test_Thing ISA Test_Indication"), Truth::False);
  EXPECT_EQ(of("Test_Job::PercentComplete = 50"), Truth::True);
}

TEST_F(Evaluation, HasNoPropertyOfAClassThatTheInstanceIsNotOf) {
  const FakeView thing("Test_Thing", {{"PercentComplete", test::number(50)}});
  EXPECT_EQ(evaluate("Test_Job::PercentComplete = 50", thing, "Test_Thing"), Truth::Unknown);
}

TEST_F(Evaluation, LooksIntoEmbeddedInstances) {
  EXPECT_EQ(ofChange("SourceInstance ISA Test_Job"), Truth::True);
  EXPECT_EQ(ofChange("SourceInstance ISA Test_Indication"), Truth::False);
  EXPECT_EQ(ofChange("SourceInstance.PercentComplete <> PreviousInstance.PercentComplete"),
            Truth::True);
  EXPECT_EQ(ofChange("ANY SourceInstance.Test_Job::States[*] = 17"), Truth::True);
  EXPECT_EQ(ofChange("ANY PreviousInstance.Test_Job::States[*] = 17"), Truth::Unknown);
  EXPECT_EQ(ofChange("SourceInstance.Name = 1"), Truth::Unknown);
  EXPECT_EQ(ofChange("SourceInstance IS NULL"), Truth::False);
}

TEST_F(Evaluation, KnowsNothingOfAnInstanceThatIsNotThere) {
  const FakeView change("Test_Modification", {{"PreviousInstance", test::text("no instance")}});
  const auto of = [&change](const std::string& condition) {
    return evaluate(condition, change, "Test_Modification");
  };
  EXPECT_EQ(of("SourceInstance ISA Test_Job"), Truth::Unknown);
  EXPECT_EQ(of("PreviousInstance ISA Test_Job"), Truth::Unknown);
  EXPECT_EQ(of("SourceInstance.Name = 'x'"), Truth::Unknown);
  EXPECT_EQ(of("PreviousInstance.Name = 'x'"), Truth::Unknown);
  EXPECT_EQ(of("SourceInstance.Name IS NULL"), Truth::True);
}

}  // namespace
