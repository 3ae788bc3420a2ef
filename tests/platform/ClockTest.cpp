#include <gmock/gmock.h>

#include "platform/Clock.h"

namespace {

using platform::Clock;
using std::chrono::milliseconds;

TEST(SteadyClock, GoesOnByAtLeastWhatIsSlept) {
  Clock& clock = platform::steadyClock();
  const Clock::TimePoint begin = clock.now();
  clock.sleepFor(milliseconds(2));
  const Clock::TimePoint between = clock.now();
  clock.sleepUntil(between + milliseconds(3));

  EXPECT_GE(between - begin, milliseconds(2));
  EXPECT_GE(clock.now() - between, milliseconds(3));
}

TEST(SteadyClock, DoesNotWaitForWhatHasPassed) {
  Clock& clock = platform::steadyClock();
  const Clock::TimePoint begin = clock.now();
  clock.sleepFor(-std::chrono::hours(1));
  clock.sleepFor(Clock::Duration::zero());
  clock.sleepUntil(begin - std::chrono::hours(1));

  EXPECT_LT(clock.now() - begin, std::chrono::minutes(1));
}

}  // namespace
