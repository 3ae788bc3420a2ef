// The time zones and the years that the C runtime knows.

#include <gmock/gmock.h>

#include "tests/Utils/DatetimeTextFixture.h"

namespace {

using test::kMoment;
using test::timestamp;
using WindowsDatetimeText = test::DatetimeTextFixture;

// The variable names no rules: the runtime has those of its home.
TEST_F(WindowsDatetimeText, HasSummerTimeInItsOffset) {
  constexpr std::uint64_t kSummer = 1'688'169'600'000'000;  // 2023-07-01 00:00 UTC
  enterZone("CET-1CEST");

  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231114231320.123000+060");
  EXPECT_EQ(timestamp(kSummer).toCimText(), "20230701020000.000000+120");
}

TEST_F(WindowsDatetimeText, HasTheEpochForAMomentThatTheRuntimeDoesNotKnow) {
  constexpr std::uint64_t kLastMoment = 32'535'215'999'999'999;
  enterZone("UTC0");

  EXPECT_EQ(timestamp(kLastMoment).toCimText(), "30001231235959.999999+000");
  EXPECT_EQ(timestamp(kLastMoment + 1).toCimText(), "19700101000000.000000+000");
}

TEST_F(WindowsDatetimeText, HasTheEpochWhereTheLocalYearIsNotKnown) {
  constexpr std::uint64_t kLastMoment = 32'535'215'999'000'000;
  enterZone("CET-1");

  EXPECT_EQ(timestamp(kLastMoment).toCimText(), "19700101000000.000000+000");
}

}  // namespace
