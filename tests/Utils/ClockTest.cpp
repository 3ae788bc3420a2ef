#include <chrono>
#include <ctime>
#include <gmock/gmock.h>

#include "Utils/Clock.h"
#include "Utils/Format.h"

namespace {

// By how many milliseconds two clocks of one system may differ.
constexpr std::uint64_t kTick = 16;

std::uint64_t millisecondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::string wallClockText() {
  const std::time_t now = std::time(nullptr);
  const std::tm* const local = std::localtime(&now);
  return utils::format("%02d:%02d:%02d", local->tm_hour, local->tm_min, local->tm_sec);
}

TEST(Clock, CountsMicrosecondsSinceTheEpochInWholeMilliseconds) {
  const std::uint64_t before = millisecondsNow();
  const std::uint64_t now = utils::currentMicroseconds();
  const std::uint64_t after = millisecondsNow();

  EXPECT_EQ(now % 1000, 0U);
  EXPECT_THAT(now / 1000, testing::AllOf(testing::Ge(before - kTick), testing::Le(after + kTick)));
}

TEST(Clock, TellsTheTimeOfDayInLocalTime) {
  std::string text;
  std::string before;
  do {  // again, if a second ended in between
    before = wallClockText();
    text = utils::timeOfDay();
  } while (before != wallClockText());

  EXPECT_EQ(text, before);
}

}  // namespace
