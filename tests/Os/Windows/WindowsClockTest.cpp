// What the clock makes of the system's own.

#include <gmock/gmock.h>
#include <sys/timeb.h>

#include "Utils/Clock.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

constexpr __time64_t kSeconds = 5'000'000'000;  // more than 32 bits
constexpr unsigned short kMilliseconds = 678;

errno_t __cdecl tellFixedTime(struct __timeb64* time) {
  time->time = kSeconds;
  time->millitm = kMilliseconds;
  time->timezone = 60;
  time->dstflag = 1;
  return 0;
}

TEST(WindowsClock, MakesMicrosecondsOfTheSystemsSecondsAndMilliseconds) {
  const test::ImportPatch patch("OrvexCimCore.dll", "_ftime64_s", &tellFixedTime);

  EXPECT_EQ(utils::currentMicroseconds(), 5'000'000'000'678'000U);
}

}  // namespace
