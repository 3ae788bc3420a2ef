// The clock's behaviour where the platform cannot tell local time.

#include <cerrno>
#include <gmock/gmock.h>

#include "Utils/Clock.h"
#include "Utils/Datetime.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/Regex.h"

namespace {

TEST(TimeOfDay, IsUnknownWithoutLocalTime) {
  const test::FailingCall failing(test::SystemCall::TellLocalTime, EOVERFLOW);

  EXPECT_EQ(utils::timeOfDay(), "??:??:??");
}

TEST(TimeOfDay, IsKnownAgainAfterwards) {
  { const test::FailingCall failing(test::SystemCall::TellLocalTime, EOVERFLOW); }

  EXPECT_THAT(utils::timeOfDay(), test::MatchesRegex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]"));
}

TEST(DatetimeText, IsTheEpochWithoutLocalTime) {
  utils::Datetime moment;
  moment.value = 1'700'000'000'123'000;
  const test::FailingCall failing(test::SystemCall::TellLocalTime, EOVERFLOW);

  EXPECT_EQ(moment.toCimText(), "19700101000000.123000+000");
}

}  // namespace
