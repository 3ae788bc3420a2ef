#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string_view>

#include "core/ValueNames.h"

namespace {

using core::findValueName;
using core::ValueName;

constexpr ValueName kStates[] = {
    {"..", "Reserved"},
    {"2", "Two"},
    {"3..9", "Some"},
    {"-5", "Below"},
    {"5", "Five"},
    {"20..", "Many"},
    {"0x8000..0xFFFF", "Vendor"},
    {"word", "A word"},
    {"1..x", "No range"},
};

TEST(ValueNames, PrefersTheNumbersOwnRow) {
  EXPECT_EQ(findValueName(kStates, 2), "Two");
  EXPECT_EQ(findValueName(kStates, 5), "Five");
  EXPECT_EQ(findValueName(kStates, -5), "Below");
}

TEST(ValueNames, FindsTheRangeOfANumber) {
  EXPECT_EQ(findValueName(kStates, 3), "Some");
  EXPECT_EQ(findValueName(kStates, 9), "Some");
  EXPECT_EQ(findValueName(kStates, 20), "Many");
  constexpr ValueName kVendor[] = {{"0x8000..0xFFFF", "Vendor"}};
  EXPECT_EQ(findValueName(kVendor, 0x8000), "Vendor");
  EXPECT_EQ(findValueName(kVendor, 65535), "Vendor");
  EXPECT_EQ(findValueName(kVendor, 65536), "");
}

TEST(ValueNames, FallsBackToTheRowForAllOthers) {
  EXPECT_EQ(findValueName(kStates, 10), "Reserved");
  EXPECT_EQ(findValueName(kStates, std::numeric_limits<std::int64_t>::min()), "Reserved");
}

TEST(ValueNames, HasNoneWithoutARow) {
  constexpr ValueName kFew[] = {{"1", "One"}, {"3..", "Many"}, {"", "Nothing"}, {"4 ", "Blank"}};
  EXPECT_EQ(findValueName(kFew, 2), "");
  EXPECT_EQ(findValueName(kFew, 4), "Many");
  EXPECT_EQ(findValueName({}, 1), "");
}

TEST(ValueNames, TakesNoNumberThatIsTooLarge) {
  constexpr ValueName kHuge[] = {{"99999999999999999999", "Huge"}};
  EXPECT_EQ(findValueName(kHuge, std::numeric_limits<std::int64_t>::max()), "");
}

TEST(ValueNames, FindsTextsToTheLetter) {
  EXPECT_EQ(findValueName(kStates, std::string_view("word")), "A word");
  EXPECT_EQ(findValueName(kStates, std::string_view("Word")), "");
}

}  // namespace
