#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>

#include "cli/Interrupt.h"

namespace {

TEST(InterruptGuard, NotesSignalsThatWouldEndTheProcess) {
  cli::InterruptGuard guard;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGINT}) {
    EXPECT_FALSE(guard.takeInterrupt());
    std::raise(signal);
    EXPECT_TRUE(guard.takeInterrupt()) << signal;
  }
}

TEST(InterruptGuard, SurvivesAReaderThatGoesAway) {
  cli::InterruptGuard guard;
  std::raise(SIGPIPE);
  EXPECT_FALSE(guard.takeInterrupt());
}

TEST(InterruptGuard, DoesNotRememberSignalsOfAnEarlierGuard) {
  {
    cli::InterruptGuard guard;
    std::raise(SIGINT);
  }
  cli::InterruptGuard guard;
  EXPECT_FALSE(guard.takeInterrupt());
  guard.yieldToInterrupt();
}

TEST(InterruptGuard, LeavesIgnoredSignalsIgnored) {
  std::signal(SIGINT, SIG_IGN);
  {
    cli::InterruptGuard guard;
    std::raise(SIGINT);
    EXPECT_FALSE(guard.takeInterrupt());
  }
  EXPECT_EQ(std::signal(SIGINT, SIG_DFL), SIG_IGN);
}

TEST(InterruptGuardDeathTest, GivesTheSignalsBack) {
  EXPECT_EXIT(
      {
        { const cli::InterruptGuard guard; }
        std::raise(SIGTERM);
        std::exit(0);
      },
      testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptGuardDeathTest, YieldsToASignalThatItNoted) {
  EXPECT_EXIT(
      {
        cli::InterruptGuard guard;
        std::raise(SIGINT);
        guard.yieldToInterrupt();
        std::exit(0);
      },
      testing::KilledBySignal(SIGINT), "");
}

}  // namespace
