#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

#include "cli/Interrupt.h"
#include "tests/cli/EndedBySignal.h"

namespace {

TEST(InterruptGuard, NotesSignalsThatWouldEndTheProcess) {
  cli::InterruptGuard guard;
  for (const int signal : {SIGINT, SIGTERM, SIGINT}) {
    EXPECT_FALSE(guard.takeInterrupt());
    std::raise(signal);
    EXPECT_TRUE(guard.takeInterrupt()) << signal;
  }
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

#ifdef SIGTSTP
TEST(InterruptGuard, NotesTheTerminalsStopsWhereItHoldsThem) {
  cli::InterruptGuard guard(cli::Stops::Held);
  for (int round = 0; round < 2; ++round) {
    EXPECT_FALSE(guard.takeStop());
    std::raise(SIGTSTP);
    EXPECT_TRUE(guard.takeStop());
  }
  EXPECT_FALSE(guard.takeInterrupt());
  std::raise(SIGTTOU);
  EXPECT_FALSE(guard.takeStop());
}

TEST(InterruptGuard, LeavesTheTerminalsStopsAloneWhereItDoesNot) {
  const cli::InterruptGuard guard;
  EXPECT_EQ(std::signal(SIGTSTP, SIG_DFL), SIG_DFL);
  EXPECT_EQ(std::signal(SIGTTOU, SIG_DFL), SIG_DFL);
}

TEST(InterruptGuard, GivesTheTerminalsStopsBack) {
  { const cli::InterruptGuard guard(cli::Stops::Held); }
  EXPECT_EQ(std::signal(SIGTSTP, SIG_DFL), SIG_DFL);
  EXPECT_EQ(std::signal(SIGTTOU, SIG_DFL), SIG_DFL);
}
#endif

TEST(InterruptGuardDeathTest, GivesTheSignalsBack) {
  EXPECT_EXIT(
      {
        { const cli::InterruptGuard guard; }
        std::raise(SIGTERM);
        std::exit(0);
      },
      test::EndedBySignal(SIGTERM), "");
}

TEST(InterruptGuardDeathTest, YieldsToASignalThatItNoted) {
  EXPECT_EXIT(
      {
        cli::InterruptGuard guard;
        std::raise(SIGINT);
        guard.yieldToInterrupt();
        std::exit(0);
      },
      test::EndedBySignal(SIGINT), "");
}

}  // namespace
