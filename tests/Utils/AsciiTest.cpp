#include <gmock/gmock.h>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "Utils/Ascii.h"

namespace {

using utils::isSameIgnoringCase;
using utils::toLowerAscii;

TEST(Ascii, MakesCapitalsSmallAndNothingElse) {
  std::string all;
  std::string lower;
  for (int code = 0; code < 256; ++code) {
    const bool isCapital = code >= 0x41 && code <= 0x5A;
    all.push_back(static_cast<char>(code));
    lower.push_back(static_cast<char>(isCapital ? code + 0x20 : code));
  }
  std::string made;
  for (const char character : all) {
    made.push_back(toLowerAscii(character));
  }
  EXPECT_EQ(made, lower);
}

TEST(Ascii, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(isSameIgnoringCase("CIM_Fan1", "cim_fAN1"));
  EXPECT_TRUE(isSameIgnoringCase("", ""));
  EXPECT_FALSE(isSameIgnoringCase("CIM_Fan", "CIM_Fans"));
  EXPECT_FALSE(isSameIgnoringCase("CIM_Fans", "CIM_Fan"));
  EXPECT_FALSE(isSameIgnoringCase("", "a"));
}

TEST(Ascii, TellsApartWhatStandsBesideTheLetters) {
  EXPECT_FALSE(isSameIgnoringCase("CIM@Fan", "CIM`Fan"));
  EXPECT_FALSE(isSameIgnoringCase("a[", "a{"));
  EXPECT_FALSE(isSameIgnoringCase("\xC4", "\xE4"));
  EXPECT_FALSE(isSameIgnoringCase(std::string_view("a\0b", 3), std::string_view("a\0c", 3)));
}

TEST(Ascii, OrdersWithoutRegardToCase) {
  const std::set<std::string, utils::LessIgnoringCase> names{"b", "C", "A", "a", "bA", "_"};
  EXPECT_THAT(names, testing::ElementsAre("_", "A", "b", "bA", "C"));
}

TEST(Ascii, IsLookedUpByAView) {
  const std::map<std::string, int, utils::LessIgnoringCase> numbers{{"Content-Type", 1}};
  EXPECT_TRUE(numbers.contains(std::string_view("content-type")));
  EXPECT_FALSE(numbers.contains(std::string_view("content-typ")));
}

TEST(Ascii, IsKnownToTheCompiler) {
  static_assert(toLowerAscii('Q') == 'q');
  static_assert(isSameIgnoringCase("Basic", "bASIC"));
  static_assert(utils::LessIgnoringCase()("a", "B"));
  SUCCEED();
}

}  // namespace
