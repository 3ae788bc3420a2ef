#include <gmock/gmock.h>
#include <string>

#include "query/Pattern.h"

namespace {

using query::Pattern;
using query::PatternFault;
using testing::HasSubstr;

bool wql(const std::string& pattern, const std::string& text) {
  return Pattern::fromWql(pattern).matches(text);
}

bool cql(const std::string& pattern, const std::string& text) {
  return Pattern::fromCql(pattern).matches(text);
}

std::string faultOf(Pattern (*read)(std::string_view), const std::string& pattern) {
  try {
    static_cast<void>(read(pattern));
  } catch (const PatternFault& fault) {
    return fault.what();
  }
  return "";
}

TEST(WqlPattern, StandsForTheWholeText) {
  EXPECT_TRUE(wql("abc", "abc"));
  EXPECT_FALSE(wql("abc", "abcd"));
  EXPECT_FALSE(wql("abc", "xabc"));
  EXPECT_FALSE(wql("abc", "ABC"));
  EXPECT_TRUE(wql("", ""));
  EXPECT_FALSE(wql("", "a"));
}

TEST(WqlPattern, HasAnyTextAndAnyCharacter) {
  EXPECT_TRUE(wql("%", ""));
  EXPECT_TRUE(wql("a%", "a"));
  EXPECT_TRUE(wql("%b%", "abc"));
  EXPECT_FALSE(wql("%b%", "acd"));
  EXPECT_TRUE(wql("a_c",
                  "a\xE2\x82\xAC"
                  "c"));
  EXPECT_FALSE(wql("a_c", "ac"));
  EXPECT_TRUE(wql("a.c*", "a.c*"));
  EXPECT_FALSE(wql("a.c", "abc"));
}

TEST(WqlPattern, HasSetsAndRanges) {
  EXPECT_TRUE(wql("x[abc]", "xb"));
  EXPECT_FALSE(wql("x[abc]", "xd"));
  EXPECT_TRUE(wql("[a-f]", "d"));
  EXPECT_TRUE(wql("[a=f]", "d"));
  EXPECT_FALSE(wql("[^a-f]", "d"));
  EXPECT_TRUE(wql("[^a-f]", "g"));
  EXPECT_TRUE(wql("100[%]", "100%"));
  EXPECT_FALSE(wql("100[%]", "100x"));
  EXPECT_TRUE(wql("[]]", "]"));
  EXPECT_TRUE(wql("[a-]", "-"));
}

TEST(WqlPattern, RefusesSetsThatDoNotEnd) {
  EXPECT_THAT(faultOf(Pattern::fromWql, "a[bc"), "character 5 of the pattern: ']' is missing");
  EXPECT_THAT(faultOf(Pattern::fromWql, "["), HasSubstr("']' is missing"));
  EXPECT_THAT(faultOf(Pattern::fromWql, "[z-a]"), HasSubstr("from the lower character"));
}

TEST(CqlPattern, StandsForTheWholeText) {
  EXPECT_TRUE(cql("abc", "abc"));
  EXPECT_FALSE(cql("abc", "abcd"));
  EXPECT_TRUE(cql(".*b.*", "abc"));
  EXPECT_TRUE(cql("^abc$", "abc"));
  EXPECT_FALSE(cql("^abc$", "abcd"));
  EXPECT_FALSE(cql("a^b", "ab"));
}

TEST(CqlPattern, Repeats) {
  EXPECT_TRUE(cql("ab*", "a"));
  EXPECT_TRUE(cql("ab*", "abbb"));
  EXPECT_FALSE(cql("ab+", "a"));
  EXPECT_TRUE(cql("ab+c", "abbc"));
  EXPECT_TRUE(cql("ab?c", "ac"));
  EXPECT_FALSE(cql("ab?c", "abbc"));
  EXPECT_TRUE(cql("(ab)+", "abab"));
  EXPECT_TRUE(cql("(a*)*", "aaa"));
  EXPECT_TRUE(cql("(a*)*", ""));
}

TEST(CqlPattern, Chooses) {
  EXPECT_TRUE(cql("a|bc|d", "bc"));
  EXPECT_FALSE(cql("a|bc|d", "ac"));
  EXPECT_TRUE(cql("x(a|)y", "xy"));
  EXPECT_TRUE(cql("^a|b$", "b"));
  EXPECT_TRUE(cql("[a-c][^x]", "bz"));
}

TEST(CqlPattern, TakesSpecialCharactersBehindABackslash) {
  EXPECT_TRUE(cql("a\\.b", "a.b"));
  EXPECT_FALSE(cql("a\\.b", "axb"));
  EXPECT_TRUE(cql("[\\]\\\\]", "\\"));
  EXPECT_TRUE(cql("\\(\\)\\{", "(){"));
}

TEST(CqlPattern, RefusesWhatIsNone) {
  EXPECT_THAT(faultOf(Pattern::fromCql, "*a"), HasSubstr("nothing stands before it"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "a|+"), HasSubstr("nothing stands before it"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "a**"), HasSubstr("repeated twice"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "(a"), "character 3 of the pattern: ')' is missing");
  EXPECT_THAT(faultOf(Pattern::fromCql, "a)"), HasSubstr("')' closes nothing"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "a{2}"), HasSubstr("counts in { }"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "a\\"), HasSubstr("missing behind \\"));
  EXPECT_THAT(faultOf(Pattern::fromCql, "[a\\"), HasSubstr("missing behind \\"));
}

TEST(CqlPattern, TakesBytesThatAreNoCharacterAsTheyAre) {
  EXPECT_TRUE(cql("a.b",
                  "a\xFF"
                  "b"));
  EXPECT_FALSE(cql("a.b",
                   "a\xFF\xFF"
                   "b"));
  EXPECT_TRUE(cql("[^x]*", "\xFF\xC3"));
}

TEST(Pattern, HasABound) {
  const std::string longest(Pattern::kMostCharacters, 'x');
  EXPECT_TRUE(wql(longest, longest));
  EXPECT_THAT(faultOf(Pattern::fromWql, longest + "x"), HasSubstr("256 characters at the most"));
  EXPECT_THAT(faultOf(Pattern::fromCql, longest + "x"), HasSubstr("256 characters at the most"));
}

// A search that tried one way after the other would not end.
TEST(Pattern, TakesHostileOnesInTheirStride) {
  const std::string text(5000, 'a');
  std::string stars;
  for (int i = 0; i < 80; ++i) {
    stars += "a*";
  }
  EXPECT_FALSE(cql(stars + "b", text));
  EXPECT_FALSE(cql("(a|a)*(a|a)*(a*)*b", text));
  EXPECT_FALSE(wql("%a%a%a%a%a%a%a%a%a%a%b", text));
  EXPECT_TRUE(cql(std::string(100, '(') + "a" + std::string(100, ')') + "*", text));
}

}  // namespace
