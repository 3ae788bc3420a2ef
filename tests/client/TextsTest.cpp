#include <gtest/gtest.h>

#include "client/Texts.h"

namespace {

TEST(JoinedTexts, HaveTheSeparatorBetweenThem) {
  EXPECT_EQ(client::join({"a", "", "b"}, ", "), "a, , b");
  EXPECT_EQ(client::join({"a"}, ", "), "a");
  EXPECT_EQ(client::join({}, ", "), "");
}

TEST(ShellWord, IsQuotedWhereItNeedsThat) {
  EXPECT_EQ(client::quoteForShell("http://a%20b@lab:5988"), "http://a%20b@lab:5988");
  EXPECT_EQ(client::quoteForShell(""), "''");
  EXPECT_EQ(client::quoteForShell("Job#1"), "'Job#1'");
  EXPECT_EQ(client::quoteForShell("a'b $c"), "'a'\\''b $c'");
}

}  // namespace
