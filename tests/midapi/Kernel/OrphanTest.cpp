#include <csignal>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "midapi/Kernel/Orphan.h"
#include "tests/midapi/Kernel/AskedChildren.h"
#include "tests/support/Posix/Processes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Returns a process that waits to be killed.
pid_t sleeper() {
  const pid_t process = ::fork();
  if (process == 0) {
    for (;;) {
      ::pause();
    }
  }
  return process;
}

// Leaves it to be awaited. Its first thread is a zombie before the others have ended.
void killAndAwaitZombie(pid_t process) {
  ::kill(process, SIGKILL);
  siginfo_t info{};
  EXPECT_EQ(::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT), 0);
}

TEST(Orphan, IsBuriedAfterItsEnd) {
  const test::AskedChildren children;
  ma::buryOrphans();  // those of other tests
  const std::size_t openFiles = test::countOpenFiles();
  const pid_t process = sleeper();
  { const ma::Orphan orphan(process); }
  ma::buryOrphans();
  EXPECT_THAT(children.all(), ElementsAre(process));
  killAndAwaitZombie(process);
  ma::buryOrphans();
  EXPECT_THAT(children.all(), IsEmpty());
  EXPECT_EQ(test::countOpenFiles(), openFiles);
}

TEST(Orphan, LeavesOthersAlone) {
  const test::AskedChildren children;
  const pid_t process = sleeper();
  const pid_t other = sleeper();
  { const ma::Orphan orphan(process); }
  killAndAwaitZombie(process);
  killAndAwaitZombie(other);
  ma::buryOrphans();
  EXPECT_THAT(children.all(), ElementsAre(other));
  EXPECT_EQ(test::awaitEnd(other), 128 + SIGKILL);
}

TEST(Orphan, IsNotAwaitedWhereItIsSomebodyElses) {
  const std::size_t openFiles = test::countOpenFiles();
  const ma::Orphan orphan(::getppid());
  EXPECT_EQ(test::countOpenFiles(), openFiles);
}

}  // namespace
