#include <gmock/gmock.h>

#include "query/QueryFault.h"

namespace {

using query::findPosition;
using query::Position;
using query::QueryFault;

TEST(QueryFault, SaysWhere) {
  const QueryFault fault(QueryFault::Kind::Invalid, "SELECT *\nFORM x", 9, "FROM is expected");
  EXPECT_STREQ(fault.what(), "line 2, column 1: FROM is expected");
  EXPECT_EQ(fault.kind(), QueryFault::Kind::Invalid);
  EXPECT_EQ(fault.position(), (Position{2, 1}));
}

TEST(QueryFault, CountsCharacters) {
  EXPECT_EQ(findPosition("abc", 0), (Position{1, 1}));
  EXPECT_EQ(findPosition("abc", 3), (Position{1, 4}));
  EXPECT_EQ(findPosition("\xC3\xA4\xE2\x82\xACx", 5), (Position{1, 3}));
  EXPECT_EQ(findPosition("\xFF\xFFx", 2), (Position{1, 3}));
  EXPECT_EQ(findPosition("a\r\n\nb", 4), (Position{3, 1}));
}

TEST(QueryFault, ShowsPartsThatAreFitToBeSeen) {
  EXPECT_EQ(query::toShown("a\x1b\n"), "a\\x1b\\n");
  EXPECT_EQ(query::toShown(std::string(40, 'x')), std::string(40, 'x'));
  EXPECT_EQ(query::toShown(std::string(41, 'x')), std::string(40, 'x') + "...");
  EXPECT_EQ(query::toShown(std::string(39, 'x') + "\xE2\x82\xAC y"),
            std::string(39, 'x') + "\xE2\x82\xAC...");
}

TEST(QueryFault, TakesAPlaceBeyondTheTextForItsEnd) {
  EXPECT_EQ(QueryFault(QueryFault::Kind::Invalid, "ab", 99, "").position(), (Position{1, 3}));
}

}  // namespace
