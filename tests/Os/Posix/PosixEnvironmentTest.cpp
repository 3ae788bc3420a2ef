// What the terminal of a process is, and is not, and what stands in for streams that it lacks.

#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <iterator>
#include <sched.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
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

constexpr int kNotAllowed = 77;

// Answers 1 where a machine with that name is said to have this one; kNotAllowed where none can be
// had.
int askMachine(std::string_view name, const std::string& expected) {
  ChildProcess child([&](ChildProcess::Link&) {
    if (unshare(CLONE_NEWUTS) != 0 || sethostname(name.data(), name.size()) != 0) {
      return kNotAllowed;
    }
    return os::getMachineName() == expected ? 1 : 0;
  });
  return child.wait();
}

TEST(MachineName, IsNoneWhereNobodyHasGivenOne) {
  const int answer = askMachine("(none)", "");
  if (answer == kNotAllowed) {
    GTEST_SKIP() << "only root can name a machine";
  }
  EXPECT_EQ(answer, 1);
  EXPECT_EQ(askMachine("lab", "lab"), 1);
}

constexpr int kStreams[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Returns whether a stream is the null device, open the wrong way round for its use.
bool isReserved(int stream) {
  struct stat state {};
  struct stat null {};
  const int access = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
  return ::fstat(stream, &state) == 0 && ::stat("/dev/null", &null) == 0 &&
         isSameFile(state, null) && (::fcntl(stream, F_GETFL) & O_ACCMODE) == access;
}

// Answers what becomes of the streams of a process whose closed ones are bits of `closed`: 0 where
// these are reserved, the others what they were, and no more files are open than before.
int reserveWhere(unsigned closed) {
  struct stat before[std::size(kStreams)]{};
  const int file = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (const int stream : kStreams) {
    if ((closed >> stream & 1U) != 0) {
      ::close(stream);
    } else if (::dup2(file, stream) < 0 || ::fstat(stream, &before[stream]) != 0) {
      return 2;
    }
  }
  const int free = ::fcntl(file, F_DUPFD, std::size(kStreams));
  ::close(free);
  os::reserveStandardStreams();
  for (const int stream : kStreams) {
    struct stat after {};
    const bool isAsExpected = (closed >> stream & 1U) != 0 ? isReserved(stream)
                                                           : ::fstat(stream, &after) == 0 &&
                                                                 isSameFile(after, before[stream]);
    if (!isAsExpected) {
      return 3 + stream;
    }
  }
  return ::fcntl(file, F_DUPFD, std::size(kStreams)) == free ? 0 : 1;
}

TEST(StandardStreams, AreReservedWhereTheyAreClosedAndOnlyThere) {
  for (unsigned closed = 0; closed < 1U << std::size(kStreams); ++closed) {
    ChildProcess child([closed](ChildProcess::Link&) { return reserveWhere(closed); });
    EXPECT_EQ(child.wait(), 0) << closed;
  }
}

}  // namespace
