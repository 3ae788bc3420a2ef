// What the terminal of a process is, and is not.

#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "Os/Environment.h"
#include "tests/support/Posix/ChildProcess.h"

namespace {

using test::ChildProcess;

constexpr int kNoTerminal = 77;

// Answers isOutputTerminal() of a process whose standard output is the descriptor.
int askWithOutput(int output) {
  if (output < 0 || dup2(output, STDOUT_FILENO) < 0) {
    return kNoTerminal;
  }
  return os::isOutputTerminal() ? 1 : 0;
}

TEST(OutputTerminal, IsNoneForAFile) {
  ChildProcess child(
      [](ChildProcess::Link&) { return askWithOutput(open("/dev/null", O_WRONLY)); });

  EXPECT_EQ(child.wait(), 0);
}

TEST(OutputTerminal, IsRecognised) {
  ChildProcess child([](ChildProcess::Link&) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
      return kNoTerminal;
    }
    return askWithOutput(open(ptsname(terminal), O_RDWR | O_NOCTTY));
  });
  const int answer = child.wait();

  if (answer == kNoTerminal) {
    GTEST_SKIP() << "this system gives no pseudo terminal";
  }
  EXPECT_EQ(answer, 1);
}

}  // namespace
