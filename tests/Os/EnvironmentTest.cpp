#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

#include "Os/Environment.h"
#include "tests/support/ChildProcess.h"

namespace {

using test::ChildProcess;

TEST(ComputerName, IsThatOfTheEnvironment) {
  os::setEnvironment("COMPUTERNAME", "NODE-7");
  EXPECT_EQ(os::getComputerName(), "NODE-7");
}

TEST(ComputerName, IsLocalhostWhenTheEnvironmentHasNone) {
  unsetenv("COMPUTERNAME");
  EXPECT_EQ(os::getComputerName(), "localhost");

  os::setEnvironment("COMPUTERNAME", "");
  EXPECT_EQ(os::getComputerName(), "localhost");
}

TEST(Environment, IsReplacedWhenSetAgain) {
  os::setEnvironment("QUORVEL_TEST", "one");
  os::setEnvironment("QUORVEL_TEST", "two");

  EXPECT_STREQ(std::getenv("QUORVEL_TEST"), "two");
}

TEST(ProgramPath, IsAbsoluteAndNamesThisProgram) {
  const std::filesystem::path path = os::getProgramPath();

  EXPECT_TRUE(path.is_absolute());
  EXPECT_TRUE(std::filesystem::is_regular_file(path));
  EXPECT_EQ(path.filename(), "os_tests");
}

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
