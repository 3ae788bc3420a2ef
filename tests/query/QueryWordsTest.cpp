#include <gmock/gmock.h>

#include "query/QueryWords.h"
#include "tests/query/QueryModel.h"

namespace {

using query::QueryWords;
using testing::HasSubstr;

TEST(QueryWords, TellsKeywordsFromNames) {
  QueryWords words("Select Selected Like_ LIKE");
  EXPECT_TRUE(words.isAtWord("SELECT"));
  EXPECT_FALSE(words.isAtName());
  EXPECT_TRUE(words.takeWord("SELECT"));
  EXPECT_FALSE(words.takeWord("SELECT"));
  EXPECT_EQ(words.takeName("a name"), "Selected");
  EXPECT_EQ(words.takeName("a name"), "Like_");
  EXPECT_EQ(test::faultOf([&] { static_cast<void>(words.takeName("a name")); }),
            "line 1, column 23: a name is expected, and here is LIKE");
}

TEST(QueryWords, TakesSymbols) {
  QueryWords words("( <=");
  EXPECT_FALSE(words.takeSymbol(")"));
  words.demandSymbol("(");
  EXPECT_TRUE(words.isAtSymbol("<="));
  EXPECT_EQ(test::faultOf([&] { words.demandSymbol("<"); }),
            "line 1, column 3: '<' is expected, and here is <=");
  words.advance();
  EXPECT_EQ(test::faultOf([&] { words.demandWord("FROM"); }),
            "line 1, column 5: FROM is expected, and the query ends here");
}

TEST(QueryWords, RefusesOnlyTheWordsOfWhatIsNotTaken) {
  const QueryWords order("Order");
  EXPECT_THAT(test::faultOf([&] { order.refuseMissing(order.token()); }),
              HasSubstr("ORDER BY is not taken"));
  const QueryWords other("'Order'");
  EXPECT_EQ(test::faultOf([&] { other.refuseMissing(other.token()); }), "");
}

TEST(QueryWords, BoundsTheText) {
  const std::string longest(query::kMostQueryBytes, ' ');
  EXPECT_EQ(test::faultOf([&] { QueryWords{longest}; }), "");
  const std::string longer = longest + " ";
  EXPECT_THAT(test::faultOf([&] { QueryWords{longer}; }),
              HasSubstr("16384 bytes at the most, and this one 16385"));
}

}  // namespace
