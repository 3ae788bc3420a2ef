#include <csignal>
#include <gtest/gtest.h>

#include "cli/Interrupt.h"

namespace {

TEST(InterruptGuard, NotesAHangUp) {
  cli::InterruptGuard guard;
  std::raise(SIGHUP);
  EXPECT_TRUE(guard.takeInterrupt());
}

TEST(InterruptGuard, SurvivesAReaderThatGoesAway) {
  cli::InterruptGuard guard;
  std::raise(SIGPIPE);
  EXPECT_FALSE(guard.takeInterrupt());
}

}  // namespace
