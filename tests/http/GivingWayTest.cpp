#include <gtest/gtest.h>

#include "http/GivingWay.h"

namespace {

using http::Clock;
using http::GivingWay;

constexpr Clock::time_point kEarly{Clock::duration(1)};
constexpr Clock::time_point kLate{Clock::duration(2)};

TEST(GivingWay, TellsOneThatMay) {
  GivingWay way(kEarly);
  EXPECT_EQ(way.from(), kEarly);
  EXPECT_TRUE(way.tell(kEarly));
}

TEST(GivingWay, TellsNobodyWhoServesARequest) {
  GivingWay way(kEarly);
  EXPECT_TRUE(way.allowFrom(GivingWay::kNever));
  EXPECT_FALSE(way.tell(way.from()));
}

TEST(GivingWay, TellsNobodyWhoHasSaidSomethingElseSince) {
  GivingWay way(kEarly);
  const Clock::time_point known = way.from();
  EXPECT_TRUE(way.allowFrom(kLate));
  EXPECT_FALSE(way.tell(known));
  EXPECT_EQ(way.from(), kLate);
}

TEST(GivingWay, StaysAsToldForGood) {
  GivingWay way(kEarly);
  ASSERT_TRUE(way.tell(kEarly));
  EXPECT_EQ(way.from(), GivingWay::kNever);
  EXPECT_FALSE(way.allowFrom(GivingWay::kNever));
  EXPECT_FALSE(way.allowFrom(kLate));
  EXPECT_FALSE(way.tell(kEarly));
}

}  // namespace
