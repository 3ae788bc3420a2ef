#include <csignal>
#include <gtest/gtest.h>

#include "cli/Interrupt.h"

namespace {

TEST(InterruptGuard, NotesABreak) {
  cli::InterruptGuard guard;
  std::raise(SIGBREAK);
  EXPECT_TRUE(guard.takeInterrupt());
}

}  // namespace
