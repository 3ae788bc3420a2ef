#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include "platform/Posix/Descriptor.h"
#include "platform/Posix/SystemLog.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/Regex.h"
#include "tests/support/TempDirectory.h"

namespace {

using platform::sendLocalMessage;
using std::chrono::milliseconds;

constexpr milliseconds kNoWait{0};
constexpr milliseconds kLongWait{20'000};

TEST(LocalMessage, ReachesASocketWithAPath) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "socket").string();
  const test::DatagramSocket socket(path);
  EXPECT_EQ(sendLocalMessage(path, "one", kNoWait), 0);
  EXPECT_EQ(sendLocalMessage(path, std::string("t\0o", 3), kNoWait), 0);
  EXPECT_EQ(socket.receive(), "one");
  EXPECT_EQ(socket.receive(), std::string("t\0o", 3));
}

TEST(LocalMessage, ReachesAnAbstractSocket) {
  const std::string name = "@quorvel-message-" + std::to_string(getpid());
  const test::DatagramSocket socket(name);
  EXPECT_EQ(sendLocalMessage(name, "text", kNoWait), 0);
  EXPECT_EQ(socket.receive(), "text");
}

TEST(LocalMessage, SaysWhyItReachesNobody) {
  const test::TempDirectory directory;
  const std::string missing = (directory.path() / "missing").string();
  EXPECT_EQ(sendLocalMessage(missing, "text", kLongWait), ENOENT);
  EXPECT_EQ(sendLocalMessage("/" + std::string(200, 'x'), "text", kLongWait), ENAMETOOLONG);
  EXPECT_EQ(sendLocalMessage("@quorvel-nobody-" + std::to_string(getpid()), "text", kLongWait),
            ECONNREFUSED);
}

// The kernel keeps some messages for a receiver, and then has their senders wait.
TEST(LocalMessage, WaitsForAReceiverThatDoesNotReadNoLongerThanItIsTold) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "socket").string();
  const test::DatagramSocket socket(path);
  unsigned taken = 0;
  while (sendLocalMessage(path, "text", kNoWait) == 0) {
    ++taken;
  }
  EXPECT_GT(taken, 0u);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(sendLocalMessage(path, "text", milliseconds(20)), EAGAIN);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(20));
  // Room for one is enough.
  EXPECT_EQ(socket.receive(), "text");
  EXPECT_EQ(sendLocalMessage(path, "last", kLongWait), 0);
}

// A log of connections that accepts none: its queue of them is full.
class FullBacklog : public testing::Test {
 protected:
  FullBacklog() : m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    m_path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)),
              0);
    EXPECT_EQ(listen(m_listener.get(), 0), 0);
    while (sendLocalMessage(m_path, "text", kNoWait) == 0) {
    }
  }

  // Accepts a connection and returns what came over it.
  [[nodiscard]] std::string accept() const {
    const platform::Descriptor connection(::accept(m_listener.get(), nullptr, nullptr));
    std::array<char, 64> buffer{};
    const ssize_t count = recv(connection.get(), buffer.data(), buffer.size(), 0);
    return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
  }

  const test::TempDirectory m_directory;
  const std::string m_path = (m_directory.path() / "socket").string();
  const platform::Descriptor m_listener;
};

TEST_F(FullBacklog, IsWaitedForNoLongerThanItIsTold) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(sendLocalMessage(m_path, "text", milliseconds(30)), EAGAIN);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
}

TEST_F(FullBacklog, IsSentToAsSoonAsThereIsRoom) {
  auto sent = std::async(std::launch::async,
                         [this] { return sendLocalMessage(m_path, "last", kLongWait); });
  std::string received;
  while (received != std::string("last", 5)) {
    received = accept();
    ASSERT_THAT(received, testing::AnyOf(std::string("text", 5), std::string("last", 5)));
  }
  EXPECT_EQ(sent.get(), 0);
}

TEST(SystemLogMessage, SaysPriorityTimeAndTag) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "log").string();
  const test::DatagramSocket socket(path);
  EXPECT_EQ(platform::sendSystemLogMessage(path, LOG_AUTHPRIV | LOG_NOTICE, "tester[7]", "a %s\n",
                                           kNoWait),
            0);
  // Facility authpriv (10), severity notice (5).
  EXPECT_THAT(
      socket.receive(),
      test::MatchesRegex("<85>[A-Z][a-z][a-z] [ 1-3][0-9] [0-9:]{8} tester\\[7\\]: a %s\n"));
}

}  // namespace
