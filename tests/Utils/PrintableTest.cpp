#include <gmock/gmock.h>
#include <string>

#include "Utils/Printable.h"

namespace {

using utils::lengthOfPrintable;
using utils::toPrintable;

struct Disturbance {
  const char* name;
  std::string text;
  std::string json;
};

const Disturbance kDisturbances[] = {
    // NOLINT(cert-err58-cpp)
    {"escape", "\x1b", R"(\u001b)"},         {"delete", "\x7f", R"(\u007f)"},
    {"U+0080", "\xc2\x80", R"(\u0080)"},     {"U+009B, begins a command", "\xc2\x9b", R"(\u009b)"},
    {"U+009F", "\xc2\x9f", R"(\u009f)"},     {"U+061C", "\xd8\x9c", R"(\u061c)"},
    {"U+200E", "\xe2\x80\x8e", R"(\u200e)"}, {"U+200F", "\xe2\x80\x8f", R"(\u200f)"},
    {"U+2028", "\xe2\x80\xa8", R"(\u2028)"}, {"U+2029", "\xe2\x80\xa9", R"(\u2029)"},
    {"U+202A", "\xe2\x80\xaa", R"(\u202a)"}, {"U+202E", "\xe2\x80\xae", R"(\u202e)"},
    {"U+2066", "\xe2\x81\xa6", R"(\u2066)"}, {"U+2069", "\xe2\x81\xa9", R"(\u2069)"},
    {"U+FEFF", "\xef\xbb\xbf", R"(\ufeff)"},
};

TEST(Printable, EscapesWhatDisturbsATerminal) {
  for (const Disturbance& disturbance : kDisturbances) {
    EXPECT_EQ(lengthOfPrintable(disturbance.text), 0u) << disturbance.name;
    EXPECT_EQ(utils::toPrintableJson("\"a" + disturbance.text + "b\""),
              "\"a" + disturbance.json + "b\"")
        << disturbance.name;
  }
}

TEST(Printable, LeavesWhatShowsAsItself) {
  for (const std::string text :
       {"a", "\xc2\xa0", "\xc3\xbc", "\xd8\x9b", "\xe2\x80\x90", "\xe2\x80\xaf", "\xe2\x81\xa5",
        "\xe2\x82\xac", "\xef\xbb\xbe", "\xf0\x9f\x98\x80", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_EQ(lengthOfPrintable(text), text.size()) << text;
    EXPECT_EQ(utils::toPrintableJson("\"" + text + "\""), "\"" + text + "\"");
  }
}

TEST(Printable, TakesNothingForACharacterThatIsNone) {
  for (const std::string text :
       {"", "\x80", "\xbf", "\xc3", "\xc3x", "\xc0\xaf", "\xe2\x82", "\xe0\x80\xaf", "\xed\xa0\x80",
        "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80", "\xfe", "\xff"}) {
    EXPECT_EQ(lengthOfPrintable(text), 0u) << text;
  }
}

TEST(Printable, HasNamesForTheCommonOnes) {
  EXPECT_EQ(toPrintable("a\nb\rc\td"), R"(a\nb\rc\td)");
  EXPECT_EQ(toPrintable(std::string("\0", 1)), R"(\x00)");
  EXPECT_EQ(toPrintable(""), "");
}

TEST(Printable, LeavesLinesAndTabsOfWhatThisProgramPutTogether) {
  EXPECT_EQ(utils::toPrintableLines("a\nb\tc\rd\x1b"), "a\nb\tc\\rd\\x1b");
}

TEST(Printable, LeavesTheLinesOfADocument) {
  EXPECT_EQ(utils::toPrintableJson("{\n  \"a\": 1\n}\n"), "{\n  \"a\": 1\n}\n");
}

}  // namespace
