#include <gtest/gtest.h>

#include "Utils/ClockText.h"

namespace {

using std::chrono::seconds;
using utils::toClockText;

TEST(ClockText, CountsMinutesAndThenHours) {
  EXPECT_EQ(toClockText(seconds(0)), "00:00");
  EXPECT_EQ(toClockText(seconds(3599)), "59:59");
  EXPECT_EQ(toClockText(seconds(3600)), "1:00:00");
  EXPECT_EQ(toClockText(seconds(100 * 3600 + 61)), "100:01:01");
}

TEST(ClockText, TakesLessThanNoTimeForNone) {
  EXPECT_EQ(toClockText(seconds(-1)), "00:00");
}

}  // namespace
