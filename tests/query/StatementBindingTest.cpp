#include <gmock/gmock.h>
#include <string>

#include "query/Parser.h"
#include "query/StatementBinding.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Language;
using query::QueryFault;
using query::Statement;
using testing::HasSubstr;
using testing::StartsWith;

Statement bind(const std::string& text) {
  Statement statement = query::parseStatement(text, Language::Cql);
  query::bindStatement(statement, text, test::querySchema());
  return statement;
}

std::string faultOf(const std::string& text) {
  return test::faultOf([&text] { static_cast<void>(bind(text)); });
}

// Columns count from the first character of the condition.
std::string conditionFault(const std::string& condition,
                           const std::string& className = "Test_Thing") {
  return faultOf("SELECT * FROM " + className + " WHERE\n" + condition);
}

TEST(StatementBinding, GivesTheClassItsSpelling) {
  EXPECT_EQ(bind("SELECT * FROM test_JOB").from.name, "Test_Job");
}

TEST(StatementBinding, RefusesAClassThatThereIsNot) {
  try {
    static_cast<void>(bind("SELECT *\nFROM Test_Thingy"));
    FAIL() << "was taken";
  } catch (const QueryFault& fault) {
    EXPECT_EQ(fault.kind(), QueryFault::Kind::UnknownClass);
    EXPECT_STREQ(fault.what(),
                 "line 2, column 6: there is no class 'Test_Thingy'; did you mean Test_Thing?");
  }
}

TEST(StatementBinding, TakesPropertiesOfTheClassBehindSelect) {
  const Statement statement = bind("SELECT name, Test_Thing.COUNT, x.Delta FROM Test_Thing x");
  EXPECT_EQ(statement.selected[0].written(), "Name");
  EXPECT_EQ(statement.selected[1].written(), "Count");
  EXPECT_EQ(statement.selected[2].written(), "Delta");
  EXPECT_FALSE(statement.isAllSelected);
  EXPECT_TRUE(bind("SELECT Test_Thing.* FROM Test_Thing").isAllSelected);
  EXPECT_TRUE(bind("SELECT x.* FROM Test_Thing x").isAllSelected);
}

TEST(StatementBinding, RefusesOtherThingsBehindSelect) {
  EXPECT_THAT(faultOf("SELECT Nmae FROM Test_Thing"),
              "line 1, column 8: class Test_Thing has no property 'Nmae'; did you mean Name?");
  EXPECT_THAT(faultOf("SELECT Test_Thing FROM Test_Thing"), HasSubstr("and here is the class"));
  EXPECT_THAT(faultOf("SELECT Test_Job.* FROM Test_Thing"), HasSubstr("'.*' stands behind"));
  EXPECT_THAT(faultOf("SELECT Roles[0] FROM Test_Thing"), HasSubstr("select Roles"));
  EXPECT_THAT(faultOf("SELECT SourceInstance.Name FROM Test_Modification"),
              HasSubstr("select SourceInstance"));
}

TEST(StatementBinding, TakesValuesOfTheSameSort) {
  for (const char* condition : {"Count = 1",
                                "Count > -1.5",
                                "Delta <= Count",
                                "Name = 'x'",
                                "Name < Roles[0]",
                                "IsGood = TRUE",
                                "IsGood <> FALSE",
                                "IsGood",
                                "NOT IsGood",
                                "TRUE",
                                "Since > '20260101120000.000000+000'",
                                "'00000001000000.000000:000' = Since",
                                "Since = Name",
                                "Peer = 'Test_Thing.Name=\"x\"'",
                                "Peer <> Peer",
                                "ANY States = 2",
                                "ANY States[*] = 2",
                                "EVERY Roles LIKE '.*'",
                                "2 <> EVERY States",
                                "States IS NULL",
                                "ANY Roles IS NULL",
                                "Peer IS NOT NULL",
                                "Test_Thing ISA Test_Job",
                                "Test_Thing IS NOT NULL",
                                "1 = 1"}) {
    EXPECT_EQ(conditionFault(condition), "") << condition;
  }
  for (const char* condition :
       {"SourceInstance.Count = 1", "SourceInstance.Count = 'x'", "SourceInstance ISA Test_Job",
        "ANY SourceInstance.Test_Job::States[*] = 17", "SourceInstance IS NULL",
        "SourceInstance.PercentComplete <> PreviousInstance.PercentComplete",
        "SourceInstance.IsGood"}) {
    EXPECT_EQ(conditionFault(condition, "Test_Modification"), "") << condition;
  }
}

TEST(StatementBinding, RefusesValuesOfAnotherSort) {
  EXPECT_EQ(
      conditionFault("Count = '7'"),
      "line 2, column 9: Count of type uint64 is compared with numbers, and here is a literal "
      "of type string");
  EXPECT_EQ(conditionFault("1 = Name"),
            "line 2, column 1: Name of type string is compared with texts in quotes, and here is a "
            "literal of type number");
  EXPECT_EQ(conditionFault("IsGood = 1"),
            "line 2, column 10: IsGood of type boolean is compared with TRUE or FALSE, and here is "
            "a literal of type number");
  EXPECT_EQ(conditionFault("Count = Name"),
            "line 2, column 9: Count of type uint64 is compared with numbers, and here is Name of "
            "type string");
  EXPECT_THAT(conditionFault("Peer = 1"), HasSubstr("is compared with object paths in quotes"));
  EXPECT_THAT(conditionFault("Since = 1"), HasSubstr("is compared with date-times in quotes"));
}

TEST(StatementBinding, RefusesAnOrderOfWhatHasNone) {
  EXPECT_EQ(conditionFault("IsGood > FALSE"),
            "line 2, column 1: IsGood of type boolean has no order; it is compared by = and <>");
  EXPECT_THAT(conditionFault("Peer < 'A.b=1'"), HasSubstr("has no order"));
  EXPECT_THAT(conditionFault("SourceInstance.IsGood >= TRUE", "Test_Modification"),
              HasSubstr("has no order"));
}

TEST(StatementBinding, RefusesTextsThatAreNoDatetimeOrPath) {
  EXPECT_THAT(conditionFault("Since > '2026-01-01'"),
              StartsWith("line 2, column 9: a date-time is yyyymmddhhmmss.mmmmmmsutc"));
  EXPECT_THAT(conditionFault("'x' = Peer"),
              StartsWith("line 2, column 1: an object path is CLASS.KEY=\"VALUE\""));
}

TEST(StatementBinding, ShowsNoMoreOfATextThanIsFitToBeSeen) {
  const std::string longText(5000, 'x');
  EXPECT_LT(conditionFault("Since > '" + longText + "'").size(), 300U);
  EXPECT_THAT(conditionFault("Since > 'a\x1b'"), HasSubstr("'a\\x1b' is neither"));
  EXPECT_THAT(conditionFault("Test_Thing ISA '\x1b" + longText + "'"),
              HasSubstr("there is no class '\\x1bxxx"));
}

TEST(StatementBinding, RefusesArraysAsValues) {
  EXPECT_EQ(conditionFault("States = 2"),
            "line 2, column 1: States is an array: write ANY or EVERY before it, or the number of "
            "an element behind it, from [0]");
  EXPECT_THAT(conditionFault("States[*] = 2"), HasSubstr("is an array"));
  EXPECT_THAT(conditionFault("ANY Name = 'x'"), HasSubstr("Name is no array"));
  EXPECT_THAT(conditionFault("ANY States[1] = 2"), HasSubstr("is one element"));
  EXPECT_THAT(conditionFault("States[*] IS NULL"), HasSubstr("leave out [*]"));
}

TEST(StatementBinding, RefusesConditionsOfTheWrongSort) {
  EXPECT_THAT(conditionFault("Count LIKE '1'"), HasSubstr("LIKE is for texts"));
  EXPECT_THAT(conditionFault("Count ISA Test_Job"), HasSubstr("ISA is for instances"));
  EXPECT_THAT(conditionFault("1 ISA Test_Job"), HasSubstr("is expected before ISA"));
  EXPECT_THAT(conditionFault("Test_Thing ISA Test_Jub"),
              "line 2, column 16: there is no class 'Test_Jub'; did you mean Test_Job?");
  EXPECT_THAT(conditionFault("1 IS NULL"), HasSubstr("is expected before IS"));
  EXPECT_THAT(conditionFault("Name"), HasSubstr("is no truth value by itself"));
  EXPECT_THAT(conditionFault("Test_Thing = 1"), HasSubstr("the instance itself is no value"));
}

TEST(StatementBinding, FindsWhatIsWrongWithinOtherConditions) {
  EXPECT_THAT(conditionFault("Count = 1 AND (Delta = 2 OR NOT Nmae = 'x')"),
              StartsWith("line 2, column 33: class Test_Thing has no property 'Nmae'"));
}

}  // namespace
