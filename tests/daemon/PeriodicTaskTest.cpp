#include <atomic>
#include <chrono>
#include <gmock/gmock.h>
#include <stdexcept>

#include "daemon/PeriodicTask.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;

TEST(PeriodicTask, IsDoneAgainAndAgain) {
  std::atomic<unsigned> times{0};
  const quorveld::PeriodicTask task(milliseconds(1), [&times] { ++times; });
  EXPECT_TRUE(test::waitUntil([&times] { return times >= 3; }));
}

TEST(PeriodicTask, EndsWithoutWaitingForItsTurn) {
  std::atomic<unsigned> times{0};
  const auto start = std::chrono::steady_clock::now();
  {
    const quorveld::PeriodicTask task(std::chrono::hours(1), [&times] { ++times; });
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, test::kDeadline);
  EXPECT_EQ(times, 0u);
}

TEST(PeriodicTask, GoesOnAfterAFailureAndLogsItOnce) {
  const test::LogCapture log;
  std::atomic<unsigned> times{0};
  {
    const quorveld::PeriodicTask task(milliseconds(1), [&times] {
      ++times;
      throw std::runtime_error("no luck");
    });
    EXPECT_TRUE(test::waitUntil([&times] { return times >= 3; }));
  }
  EXPECT_THAT(log.messages("quorveld::PeriodicTask::run"),
              testing::ElementsAre(testing::HasSubstr("no luck")));
}

TEST(PeriodicTask, GoesOnAfterAFailureOfNoStandardType) {
  const test::LogCapture log;
  std::atomic<unsigned> times{0};
  {
    const quorveld::PeriodicTask task(milliseconds(1), [&times] {
      ++times;
      throw 7;  // NOLINT(hicpp-exception-baseclass): whatever it is
    });
    EXPECT_TRUE(test::waitUntil([&times] { return times >= 3; }));
  }
  EXPECT_THAT(log.messages("quorveld::PeriodicTask::run"),
              testing::ElementsAre(testing::HasSubstr("exception of no standard type")));
}

}  // namespace
