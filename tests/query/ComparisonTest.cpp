#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <vector>

#include "query/Comparison.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Comparator;
using query::compare;
using query::Truth;
using query::Value;
using test::array;
using test::datetime;
using test::negative;
using test::number;
using test::path;
using test::real;
using test::text;
using test::truth;

// Returns the comparators that are true, in the order of the enumeration: = <> < <= > >=.
std::string holding(const Value& left, const Value& right) {
  std::string found;
  for (const auto& [comparator, sign] :
       {std::pair{Comparator::Equal, "= "}, std::pair{Comparator::NotEqual, "<> "},
        std::pair{Comparator::Less, "< "}, std::pair{Comparator::LessOrEqual, "<= "},
        std::pair{Comparator::Greater, "> "}, std::pair{Comparator::GreaterOrEqual, ">= "}}) {
    switch (compare(left, comparator, right)) {
      case Truth::True:
        found += sign;
        break;
      case Truth::Unknown:
        found += "?";
        break;
      case Truth::False:
        break;
    }
  }
  return found;
}

constexpr const char* kSame = "= <= >= ";
constexpr const char* kLess = "<> < <= ";
constexpr const char* kGreater = "<> > >= ";
constexpr const char* kUnknown = "??????";

TEST(Comparison, TakesNumbersAsNumbersWhateverTheirTypes) {
  // Each is greater than those in front of it.
  const std::vector<Value> rising = {real(-1e300),
                                     negative(std::numeric_limits<std::int64_t>::min()),
                                     negative(-2),
                                     real(-1.5),
                                     negative(-1),
                                     real(-0.5),
                                     number(0),
                                     real(0.25),
                                     number(1),
                                     number(9223372036854775807U),
                                     number(9223372036854775808U),
                                     number(18446744073709551615U),
                                     real(18446744073709551616.0),
                                     real(1e300)};
  for (std::size_t i = 0; i < rising.size(); ++i) {
    for (std::size_t j = 0; j < rising.size(); ++j) {
      const char* const expected = i == j ? kSame : (i < j ? kLess : kGreater);
      EXPECT_EQ(holding(rising[i], rising[j]), expected) << i << " and " << j;
    }
  }
}

TEST(Comparison, LosesNothingOfLargeNumbers) {
  // As floating-point numbers, these are the same.
  EXPECT_EQ(holding(number(9007199254740993U), number(9007199254740992U)), kGreater);
  EXPECT_EQ(holding(number(9007199254740993U), real(9007199254740992.0)), kGreater);
  EXPECT_EQ(holding(number(18446744073709551615U), negative(-1)), kGreater);
  EXPECT_EQ(holding(number(3), real(3.0)), kSame);
  EXPECT_EQ(holding(negative(-3), real(-3.0)), kSame);
}

TEST(Comparison, TakesTextsByTheirCharacters) {
  EXPECT_EQ(holding(text("abc"), text("abc")), kSame);
  EXPECT_EQ(holding(text("ab"), text("abc")), kLess);
  EXPECT_EQ(holding(text("B"), text("a")), kLess);
  EXPECT_EQ(holding(text("\xC3\xA4"), text("z")), kGreater);
}

TEST(Comparison, GivesTruthValuesNoOrder) {
  EXPECT_EQ(holding(truth(true), truth(true)), "= ????");
  EXPECT_EQ(holding(truth(true), truth(false)), "<> ????");
}

TEST(Comparison, TakesDatetimesAsMoments) {
  const Value early = datetime("20260101120000.000000+000");
  EXPECT_EQ(holding(early, datetime("20260101130000.000000+060")), kSame);
  EXPECT_EQ(holding(early, datetime("20260101120000.000001+000")), kLess);
  EXPECT_EQ(holding(early, text("20260101140000.000000+060")), kLess);
  EXPECT_EQ(holding(text("20260101140000.000000+060"), early), kGreater);
  EXPECT_EQ(holding(early, text("soon")), kUnknown);
}

TEST(Comparison, TellsMomentsFromIntervals) {
  const Value hour = datetime("00000000010000.000000:000");
  EXPECT_EQ(holding(hour, text("00000000020000.000000:000")), kLess);
  EXPECT_EQ(holding(hour, datetime("20260101120000.000000+000")), kUnknown);
}

TEST(Comparison, TakesReferencesAsObjects) {
  EXPECT_EQ(holding(path("A.Id=\"1\""), path("a.id=\"1\"")), "= ????");
  EXPECT_EQ(holding(path("A.Id=\"1\""), text("root/x:A.Id=\"1\"")), "= ????");
  EXPECT_EQ(holding(text("A.Id=\"2\""), path("A.Id=\"1\"")), "<> ????");
}

TEST(Comparison, KnowsNothingOfNullAndOfOtherSorts) {
  const std::vector<Value> values = {{},        truth(true),        number(1),
                                     text("1"), path("A.Id=\"1\""), array({number(1)})};
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(holding(values[i], Value()), kUnknown) << i;
    EXPECT_EQ(holding(Value(), values[i]), kUnknown) << i;
  }
  EXPECT_EQ(holding(number(1), text("1")), kUnknown);
  EXPECT_EQ(holding(number(1), truth(true)), kUnknown);
  EXPECT_EQ(holding(array({number(1)}), array({number(1)})), kUnknown);
}

TEST(Truth, IsNegated) {
  EXPECT_EQ(query::negate(Truth::True), Truth::False);
  EXPECT_EQ(query::negate(Truth::False), Truth::True);
  EXPECT_EQ(query::negate(Truth::Unknown), Truth::Unknown);
}

}  // namespace
