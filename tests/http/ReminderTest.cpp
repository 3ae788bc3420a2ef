#include <gtest/gtest.h>

#include "http/Reminder.h"

namespace {

using http::Clock;
using http::Reminder;

TEST(Reminder, IsDueOnceInAWhile) {
  Reminder reminder;
  const Clock::time_point begin(std::chrono::hours(1));
  EXPECT_TRUE(reminder.isDue(begin));
  EXPECT_FALSE(reminder.isDue(begin));
  EXPECT_FALSE(reminder.isDue(begin + Reminder::kInterval - Clock::duration(1)));
  EXPECT_TRUE(reminder.isDue(begin + Reminder::kInterval));
  EXPECT_FALSE(reminder.isDue(begin + Reminder::kInterval));
}

}  // namespace
