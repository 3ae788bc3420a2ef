#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/AskingChild.h"
#include "tests/midapi/Kernel/AskedChildren.h"
#include "tests/support/Posix/Processes.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::AskingChild;
using ma::Errand;
using State = ma::AskingChild::State;
using Bytes = std::vector<std::uint8_t>;
using std::chrono::milliseconds;
using testing::IsEmpty;
using testing::SizeIs;

constexpr milliseconds kLong = test::kDeadline;

class AskingChildTest : public testing::Test {
 protected:
  void read(const std::string& path) {
    m_child.send(Errand::PlainFile, Bytes(path.begin(), path.end()));
  }
  // Has the child wait for what nobody writes, and returns its number.
  pid_t hold() {
    EXPECT_EQ(::mkfifo(m_fifo.c_str(), 0600), 0);
    read(m_fifo);
    EXPECT_EQ(m_child.await(milliseconds(1)), State::Waiting);
    EXPECT_THAT(m_children.all(), SizeIs(1));
    return m_children.all().at(0);
  }
  void writeToFifo(const std::string& text) const {
    const platform::Descriptor file(::open(m_fifo.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(::write(file.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  test::AskedChildren m_children;
  test::TempDirectory m_directory;
  const std::string m_fifo = m_directory.path() / "fifo";
  AskingChild m_child{ma::Forks()};
};

TEST_F(AskingChildTest, BringsWhatItIsSentFor) {
  read(m_directory.write("file", std::string(100'000, 'x')));
  EXPECT_EQ(m_child.await(kLong), State::Replied);
  EXPECT_EQ(m_child.reply().error, 0);
  EXPECT_EQ(m_child.reply().bytes(), Bytes(100'000, 'x'));
  read(m_directory.path() / "none");
  EXPECT_EQ(m_child.await(kLong), State::Replied);
  EXPECT_EQ(m_child.reply().error, ENOENT);
  EXPECT_THAT(m_child.reply().bytes(), IsEmpty());
}

TEST_F(AskingChildTest, IsWaitedForNoLongerThanOneWants) {
  hold();
  EXPECT_EQ(m_child.await(milliseconds(0)), State::Waiting);
  const auto before = std::chrono::steady_clock::now();
  writeToFifo("late");
  EXPECT_EQ(m_child.await(kLong), State::Replied);
  EXPECT_EQ(m_child.reply().bytes(), (Bytes{'l', 'a', 't', 'e'}));
  EXPECT_GE(m_child.reply().time, before);
  EXPECT_LE(m_child.reply().time, std::chrono::steady_clock::now());
}

TEST_F(AskingChildTest, IsWaitedForWhereItDoesNotGetToRun) {
  ASSERT_THAT(m_children.all(), SizeIs(1));
  const pid_t process = m_children.all()[0];
  ::kill(process, SIGSTOP);
  ASSERT_TRUE(test::waitUntil([&] { return test::statusOf(process, "State")[0] == 'T'; }));
  read(m_directory.write("file", std::string("x")));
  const auto longer = std::chrono::steady_clock::now() + milliseconds(50);
  std::thread machine([&] {
    EXPECT_TRUE(test::waitUntil([&] { return std::chrono::steady_clock::now() >= longer; }));
    ::kill(process, SIGCONT);
  });
  EXPECT_EQ(m_child.await(milliseconds(1)), State::Replied);
  machine.join();
}

TEST_F(AskingChildTest, IsNotWaitedForWithoutEndWhereItBringsALittleAllTheTime) {
  hold();
  std::atomic<bool> isOver{false};
  std::thread feeder([&] {
    const platform::Descriptor file(::open(m_fifo.c_str(), O_WRONLY | O_CLOEXEC));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!isOver && std::chrono::steady_clock::now() < end) {
      int unread = 0;
      EXPECT_EQ(::ioctl(file.get(), FIONREAD, &unread), 0);
      if (unread == 0) {
        EXPECT_EQ(::write(file.get(), "x", 1), 1);
      }
    }
  });
  EXPECT_EQ(m_child.await(milliseconds(20)), State::Waiting);
  isOver = true;
  feeder.join();
  EXPECT_EQ(m_child.await(kLong), State::Replied);
}

TEST_F(AskingChildTest, EndsWhenItIsDismissedAndFree) {
  const pid_t process = hold();
  m_child.dismiss();
  EXPECT_EQ(m_child.await(milliseconds(1)), State::Waiting);
  writeToFifo("late");
  EXPECT_EQ(test::awaitEnd(process), 0);
  EXPECT_EQ(m_child.await(kLong), State::Replied);
  EXPECT_EQ(m_child.reply().bytes(), (Bytes{'l', 'a', 't', 'e'}));
}

TEST_F(AskingChildTest, SaysThatItWasKilled) {
  const pid_t process = hold();
  ::kill(process, SIGKILL);
  EXPECT_EQ(m_child.await(kLong), State::Ended);
  EXPECT_EQ(test::awaitEnd(process), 128 + SIGKILL);
  read(m_fifo);
  EXPECT_EQ(m_child.await(kLong), State::Ended);
}

TEST_F(AskingChildTest, HoldsNothingOfTheProgram) {
  const test::Pipe pipe;
  const AskingChild other{ma::Forks()};
  ::close(pipe.in());
  // All other ends are closed where the reader sees the end.
  pollfd awaited{pipe.out(), POLLIN, 0};
  EXPECT_TRUE(test::waitUntil([&] { return ::poll(&awaited, 1, 0) == 1; }));
  EXPECT_EQ(awaited.revents, POLLHUP);
  ::close(pipe.out());
}

TEST_F(AskingChildTest, HandlesNoSignal) {
  // The C library's own, 32 and 33, are for threads, which the child has not.
  constexpr std::uint64_t kOfThreads = std::uint64_t{3} << 31;
  struct sigaction before {};
  struct sigaction handled {};
  handled.sa_handler = [](int) {};
  ::sigaction(SIGUSR1, &handled, &before);
  {
    AskingChild other{ma::Forks()};
    other.send(Errand::PlainFile, Bytes{'x'});
    EXPECT_EQ(other.await(kLong), State::Replied);
    EXPECT_THAT(m_children.all(), SizeIs(2));
    const pid_t process = m_children.all().back();
    for (const char* field : {"SigCgt", "SigIgn", "SigBlk"}) {
      EXPECT_EQ(std::stoull(test::statusOf(process, field), nullptr, 16) & ~kOfThreads, 0U)
          << field;
    }
  }
  ::sigaction(SIGUSR1, &before, nullptr);
}

TEST(AskingChild, IsNobodysChildAndLeavesNothingBehind) {
  const std::size_t openFiles = test::countOpenFiles();
  {
    AskingChild child{ma::Forks()};
    EXPECT_EQ(::waitpid(-1, nullptr, 0), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_EQ(test::countOpenFiles(), openFiles + 1);
  }
  EXPECT_EQ(test::countOpenFiles(), openFiles);
}

TEST(AskingChild, EndsWithItsOwner) {
  const test::AskedChildren children;
  {
    const AskingChild child{ma::Forks()};
    EXPECT_THAT(children.all(), SizeIs(1));
  }
  EXPECT_EQ(children.awaitOne(), 0);
}

TEST(AskingChild, SaysWhyItCannotBeStarted) {
  const auto noProcess = [] {
    errno = EAGAIN;
    return -1;
  };
  for (const ma::Forks& forks : {ma::Forks{noProcess, ::_Fork}, ma::Forks{::fork, noProcess}}) {
    const std::size_t openFiles = test::countOpenFiles();
    try {
      const AskingChild child(forks);
      ADD_FAILURE() << "there is a child";
    } catch (const std::system_error& fault) {
      EXPECT_EQ(fault.code().value(), EAGAIN);
      EXPECT_THAT(fault.what(), testing::HasSubstr("cannot start a child process"));
    }
    EXPECT_EQ(test::countOpenFiles(), openFiles);
  }
}

}  // namespace
