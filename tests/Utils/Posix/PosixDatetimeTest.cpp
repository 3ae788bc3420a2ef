// Time zones with rules of their own, and moments of the years that the system knows.

#include <gmock/gmock.h>

#include "tests/Utils/DatetimeTextFixture.h"

namespace {

using test::kMoment;
using test::timestamp;
using PosixDatetimeText = test::DatetimeTextFixture;

TEST_F(PosixDatetimeText, HasSummerTimeInItsOffset) {
  constexpr std::uint64_t kSummer = 1'688'169'600'000'000;  // 2023-07-01 00:00 UTC
  enterZone("CET-1CEST,M3.5.0,M10.5.0/3");

  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231114231320.123000+060");
  EXPECT_EQ(timestamp(kSummer).toCimText(), "20230701020000.000000+120");
}

TEST_F(PosixDatetimeText, HasTheEpochForAMomentThatItCannotWrite) {
  constexpr std::uint64_t kLastMoment = 253'402'300'799'999'999;
  enterZone("UTC0");

  EXPECT_EQ(timestamp(kLastMoment).toCimText(), "99991231235959.999999+000");
  EXPECT_EQ(timestamp(kLastMoment + 1).toCimText(), "19700101000000.000000+000");
}

}  // namespace
