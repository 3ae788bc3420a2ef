#include <gmock/gmock.h>
#include <string>

#include "query/Parser.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Condition;
using query::Language;
using query::parseStatement;
using query::QueryFault;
using query::Statement;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

std::string faultOf(const std::string& text, Language language = Language::Wql) {
  return test::faultOf([&] { static_cast<void>(parseStatement(text, language)); });
}

// Returns what is wrong with a condition; columns count from its first character.
std::string conditionFault(const std::string& condition, Language language = Language::Wql) {
  return faultOf("SELECT * FROM A WHERE\n" + condition, language);
}

QueryFault::Kind kindOf(const std::string& text) {
  try {
    static_cast<void>(parseStatement(text, Language::Cql));
  } catch (const QueryFault& fault) {
    return fault.kind();
  }
  throw std::runtime_error("taken: " + text);
}

std::string write(const query::Operand& operand) {
  std::string text;
  if (operand.quantifier != query::Quantifier::None) {
    text = operand.quantifier == query::Quantifier::Any ? "any " : "every ";
  }
  return text + (operand.literal ? "literal" : operand.chain.written());
}

// Returns the tree with its groups in brackets.
std::string write(const Condition& condition) {
  constexpr const char* kSigns[] = {"=", "<>", "<", "<=", ">", ">="};
  std::string text;
  switch (condition.kind) {
    case Condition::Kind::And:
    case Condition::Kind::Or:
      for (const Condition& part : condition.parts) {
        text += text.empty() ? "" : (condition.kind == Condition::Kind::And ? " & " : " | ");
        text += write(part);
      }
      return "{" + text + "}";
    case Condition::Kind::Not:
      return "!" + write(condition.parts.front());
    case Condition::Kind::Compare:
      return write(condition.operands[0]) + " " +
             kSigns[static_cast<std::size_t>(condition.comparator)] + " " +
             write(condition.operands[1]);
    case Condition::Kind::Like:
      return write(condition.operands[0]) + " like";
    case Condition::Kind::IsNull:
      return write(condition.operands[0]) + " null";
    case Condition::Kind::Isa:
      return write(condition.operands[0]) + " isa " + condition.className.name;
    case Condition::Kind::Test:
      return write(condition.operands[0]);
  }
  return "?";
}

std::string tree(const std::string& condition, Language language = Language::Wql) {
  return write(parseStatement("SELECT * FROM A WHERE " + condition, language).where.value());
}

TEST(Parser, ReadsAQueryForAll) {
  const Statement statement = parseStatement("select * from CIM_Job", Language::Cql);
  EXPECT_TRUE(statement.isAllSelected);
  EXPECT_THAT(statement.selected, IsEmpty());
  EXPECT_EQ(statement.from.name, "CIM_Job");
  EXPECT_EQ(statement.from.offset, 14U);
  EXPECT_EQ(statement.alias, "");
  EXPECT_FALSE(statement.where);
}

TEST(Parser, ReadsAListOfProperties) {
  const Statement statement = parseStatement("SELECT Name, A.B ,C::D, x.* FROM A", Language::Cql);
  ASSERT_THAT(statement.selected, SizeIs(4));
  EXPECT_FALSE(statement.isAllSelected);
  EXPECT_EQ(statement.selected[0].written(), "Name");
  EXPECT_EQ(statement.selected[1].written(), "A.B");
  EXPECT_EQ(statement.selected[2].written(), "C::D");
  EXPECT_TRUE(statement.selected[3].isAll);
}

TEST(Parser, ReadsAnotherNameOfTheClass) {
  EXPECT_EQ(parseStatement("SELECT * FROM A AS b WHERE b.c = 1", Language::Cql).alias, "b");
  EXPECT_EQ(parseStatement("SELECT * FROM A b", Language::Cql).alias, "b");
}

TEST(Parser, BindsAndCloserThanOrAndNotCloserThanAnd) {
  EXPECT_EQ(tree("a=1 OR b=1 AND NOT c=1"), "{a = literal | {b = literal & !c = literal}}");
  EXPECT_EQ(tree("(a=1 or b=1) and not not c=1"), "{{a = literal | b = literal} & !!c = literal}");
  EXPECT_EQ(tree("a=1 AND b=1 AND c=1"), "{a = literal & b = literal & c = literal}");
  EXPECT_EQ(tree("((a=1))"), "a = literal");
}

TEST(Parser, ReadsEachComparison) {
  EXPECT_EQ(tree("a = 1"), "a = literal");
  EXPECT_EQ(tree("a <> 'x'"), "a <> literal");
  EXPECT_EQ(tree("a != -1.5"), "a <> literal");
  EXPECT_EQ(tree("a < b.c"), "a < b.c");
  EXPECT_EQ(tree("+1 <= a"), "literal <= a");
  EXPECT_EQ(tree("TRUE > false"), "literal > literal");
  EXPECT_EQ(tree("a >= 0x10"), "a >= literal");
}

TEST(Parser, ReadsTheOtherConditions) {
  EXPECT_EQ(tree("a IS NULL"), "a null");
  EXPECT_EQ(tree("a is not null"), "!a null");
  EXPECT_EQ(tree("a LIKE '%'"), "a like");
  EXPECT_EQ(tree("a NOT LIKE '%'"), "!a like");
  EXPECT_EQ(tree("a ISA CIM_Job"), "a isa CIM_Job");
  EXPECT_EQ(tree("a ISA \"CIM_Job\""), "a isa CIM_Job");
  EXPECT_EQ(tree("a AND NOT b"), "{a & !b}");
}

TEST(Parser, ReadsArrays) {
  EXPECT_EQ(tree("a[0] = 1"), "a[0] = literal");
  EXPECT_EQ(tree("ANY a = 1"), "any a = literal");
  EXPECT_EQ(tree("every a.B::c[*] <> any d"), "every a.B::c[*] <> any d");
  EXPECT_EQ(tree("ANY a LIKE 'x'"), "any a like");
}

TEST(Parser, ReadsAConditionAloneInFql) {
  const Statement statement = parseStatement("a = 1 AND b LIKE '.*'", Language::Fql);
  EXPECT_EQ(statement.from.name, "");
  EXPECT_TRUE(statement.isAllSelected);
  EXPECT_EQ(write(statement.where.value()), "{a = literal & b like}");
  EXPECT_THAT(faultOf("SELECT * FROM A", Language::Fql), StartsWith("line 1, column 1: "));
}

TEST(Parser, TakesWordsThatBeginWhatItLacksAsNamesElsewhere) {
  EXPECT_EQ(tree("Order = 1 AND first = 2"), "{Order = literal & first = literal}");
  EXPECT_EQ(parseStatement("SELECT First, Distinct FROM A", Language::Cql).selected[1].written(),
            "Distinct");
}

TEST(Parser, SaysWhatItExpectsAndWhatIsThere) {
  EXPECT_EQ(faultOf(""), "line 1, column 1: SELECT is expected, and the query ends here");
  EXPECT_EQ(faultOf("SELEC * FROM A"), "line 1, column 1: SELECT is expected, and here is SELEC");
  EXPECT_EQ(faultOf("SELECT FROM A"),
            "line 1, column 8: '*' or the name of a property is expected, and here is FROM");
  EXPECT_EQ(faultOf("SELECT a,\n  FROM A"),
            "line 2, column 3: '*' or the name of a property is expected, and here is FROM");
  EXPECT_EQ(faultOf("SELECT * FORM A"), "line 1, column 10: FROM is expected, and here is FORM");
  EXPECT_EQ(faultOf("SELECT * FROM"),
            "line 1, column 14: the name of a class is expected, and the query ends here");
  EXPECT_EQ(faultOf("SELECT * FROM A b c"),
            "line 1, column 19: WHERE or the end is expected, and here is c");
  EXPECT_THAT(faultOf("SELECT * FROM A;"),
              HasSubstr("WHERE or the end is expected, and here is ;"));
  EXPECT_EQ(faultOf("SELECT * FROM A WHERE"),
            "line 1, column 22: a property or a value is expected, and the query ends here");
}

TEST(Parser, SaysWhatIsWrongInACondition) {
  EXPECT_EQ(conditionFault("a == 1"),
            "line 2, column 4: a property or a value is expected, and here is =");
  EXPECT_EQ(
      conditionFault("a 1"),
      "line 2, column 3: =, <>, <, <=, >, >=, !=, IS, ISA or LIKE is expected, and here is 1");
  EXPECT_EQ(conditionFault("(a = 1"),
            "line 2, column 7: AND, OR or ')' is expected, and the query ends here");
  EXPECT_EQ(conditionFault("a = 1)"),
            "line 2, column 6: AND, OR or the end is expected, and here is )");
  EXPECT_EQ(conditionFault("a = 1 b = 2"),
            "line 2, column 7: AND, OR or the end is expected, and here is b");
  EXPECT_EQ(conditionFault("a IS 1"), "line 2, column 6: NULL is expected, and here is 1");
  EXPECT_EQ(conditionFault("a ISA 1"),
            "line 2, column 7: the name of a class is expected, and here is 1");
  EXPECT_EQ(conditionFault("a LIKE b"),
            "line 2, column 8: a pattern in quotes is expected, and here is b");
  EXPECT_EQ(conditionFault("a NOT 1"), "line 2, column 7: LIKE is expected, and here is 1");
  EXPECT_EQ(conditionFault("a. = 1"),
            "line 2, column 4: the name of a property is expected, and here is =");
  EXPECT_EQ(
      conditionFault("a[x] = 1"),
      "line 2, column 3: the number of an element, from 0, or '*' is expected, and here is x");
  EXPECT_EQ(conditionFault("ANY 1 = 1"),
            "line 2, column 5: a property that is an array is expected, and here is 1");
  EXPECT_EQ(conditionFault("a = - 'x'"), "line 2, column 7: a number is expected, and here is 'x'");
}

TEST(Parser, SaysWhatToWriteInstead) {
  EXPECT_EQ(conditionFault("a = NULL"),
            "line 2, column 5: nothing is compared with NULL; write IS NULL or IS NOT NULL");
  EXPECT_EQ(conditionFault("a != 1", Language::Cql),
            "line 2, column 3: != is of WQL; DMTF:CQL has <>");
  EXPECT_EQ(conditionFault("a LIKE '*'", Language::Cql),
            "line 2, column 8: character 1 of the pattern: nothing stands before it that it could "
            "repeat; write \\ before the character itself");
  EXPECT_THAT(conditionFault("A.* = 1"), HasSubstr("list behind SELECT alone"));
  EXPECT_THAT(conditionFault("a = -9223372036854775809"), HasSubstr("beyond those of 64 bits"));
}

TEST(Parser, ShortensWhatItShows) {
  const std::string name(5000, 'x');
  EXPECT_EQ(faultOf(name),
            "line 1, column 1: SELECT is expected, and here is " + name.substr(0, 40) + "...");
}

TEST(Parser, NamesWhatItDoesNotTake) {
  for (const char* text : {"SELECT DISTINCT a FROM A",
                           "SELECT FIRST 3 a FROM A",
                           "SELECT a AS b FROM A",
                           "SELECT COUNT(*) FROM A",
                           "SELECT * FROM A, B",
                           "SELECT * FROM A JOIN B",
                           "SELECT * FROM A WITHIN 5",
                           "SELECT * FROM A ORDER BY b",
                           "SELECT * FROM A b ORDER BY c",
                           "SELECT * FROM A WHERE a=1 ORDER BY b",
                           "SELECT * FROM A WHERE a=1 GROUP BY b",
                           "SELECT * FROM A WHERE a + 1 = 2",
                           "SELECT * FROM A WHERE a = b || 'x'",
                           "SELECT * FROM A WHERE a IN (1)",
                           "SELECT * FROM A WHERE ANY a IN b SATISFIES (c=1)",
                           "SELECT * FROM A WHERE a BETWEEN 1 AND 2",
                           "SELECT * FROM A WHERE EXISTS (x)",
                           "SELECT * FROM A WHERE f(a) = 1",
                           "SELECT * FROM A WHERE a[1..2] = 1",
                           "SELECT * FROM A WHERE a[1,2] = 1",
                           "SELECT * FROM A WHERE a[1].b = 1",
                           "SELECT * FROM A WHERE a = A.a#'On'",
                           "ASSOCIATORS OF {A.b=1}"}) {
    EXPECT_EQ(kindOf(text), QueryFault::Kind::Unsupported) << text;
  }
}

TEST(Parser, BoundsTheLength) {
  std::string text = "SELECT * FROM A WHERE a = '";
  text += std::string(query::kMostQueryBytes - text.size() - 1, 'x') + "'";
  EXPECT_EQ(faultOf(text), "");
  EXPECT_THAT(faultOf(text + " "), HasSubstr("16384 bytes at the most, and this one 16385"));
  EXPECT_THAT(faultOf(std::string(1024 * 1024, ' ')), HasSubstr("bytes at the most"));
}

TEST(Parser, BoundsTheDepth) {
  const auto nested = [](std::size_t depth, const std::string& open, const std::string& close) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
      text += open;
    }
    text += "a = 1";
    for (std::size_t i = 0; i < depth; ++i) {
      text += close;
    }
    return text;
  };
  EXPECT_EQ(conditionFault(nested(query::kDeepestQuery, "(", ")")), "");
  EXPECT_EQ(conditionFault(nested(query::kDeepestQuery, "NOT ", "")), "");
  EXPECT_THAT(conditionFault(nested(query::kDeepestQuery + 1, "(", ")")),
              "line 2, column 65: ( and NOT are nested deeper than 64");
  EXPECT_THAT(conditionFault(nested(4000, "NOT ", "")), HasSubstr("deeper than 64"));
  EXPECT_THAT(conditionFault(nested(8000, "(", ")")), HasSubstr("deeper than 64"));
  EXPECT_THAT(conditionFault(nested(10'000, "(", ")")), HasSubstr("16384 bytes at the most"));
}

TEST(Parser, BoundsTheNamesOfAProperty) {
  EXPECT_EQ(conditionFault("a.b.c.d.e.f.g.h = 1"), "");
  EXPECT_EQ(conditionFault("a.b.c.d.e.f.g.h.i = 1"),
            "line 2, column 17: a property has 8 names between dots at the most");
}

TEST(Parser, BoundsTheNumberOfConditionsAndTheirPatterns) {
  const auto chain = [](std::size_t count, const std::string& condition) {
    std::string text = condition;
    for (std::size_t i = 1; i < count; ++i) {
      text += " OR " + condition;
    }
    return text;
  };
  EXPECT_EQ(conditionFault(chain(query::kMostConditions, "a=1")), "");
  EXPECT_THAT(conditionFault(chain(query::kMostConditions + 1, "a=1")),
              HasSubstr("256 conditions at the most"));
  const std::string like = "a LIKE '" + std::string(256, 'x') + "'";
  EXPECT_EQ(conditionFault(chain(4, like)), "");
  EXPECT_THAT(conditionFault(chain(5, like)), HasSubstr("1024 bytes at the most"));
}

}  // namespace
