// Over real connections of this machine. The tests that become other users need root.

#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "daemon/Posix/SocketOwner.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace {

using platform::Descriptor;
using quorveld::findLocalClient;
using quorveld::findTcpClient;
using test::ChildProcess;

constexpr uid_t kUser = 64242;

// Whether a signal interrupts the next wait for an answer of the kernel.
std::atomic<bool> s_isInterrupted{false};

}  // namespace

// The host's objects in this program call it.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" ssize_t recv(int socket, void* buffer, std::size_t size, int flags) {
  if (s_isInterrupted.exchange(false)) {
    errno = EINTR;
    return -1;
  }
  return reinterpret_cast<decltype(&recv)>(dlsym(RTLD_NEXT, "recv"))(socket, buffer, size, flags);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

namespace {

sockaddr_storage parse(const std::string& address, std::uint16_t port) {
  sockaddr_storage storage{};
  auto* four = reinterpret_cast<sockaddr_in*>(&storage);
  auto* six = reinterpret_cast<sockaddr_in6*>(&storage);
  if (inet_pton(AF_INET, address.c_str(), &four->sin_addr) == 1) {
    four->sin_family = AF_INET;
    four->sin_port = htons(port);
  } else if (inet_pton(AF_INET6, address.c_str(), &six->sin6_addr) == 1) {
    six->sin6_family = AF_INET6;
    six->sin6_port = htons(port);
  }
  return storage;
}

socklen_t sizeOf(const sockaddr_storage& address) {
  return address.ss_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
}

sockaddr_storage ownEnd(const Descriptor& socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof(address);
  EXPECT_EQ(getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  return address;
}

sockaddr_storage otherEnd(const Descriptor& socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof(address);
  EXPECT_EQ(getpeername(socket.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  return address;
}

Descriptor connectTo(const sockaddr_storage& server) {
  Descriptor client(socket(server.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  EXPECT_EQ(connect(client.get(), reinterpret_cast<const sockaddr*>(&server), sizeOf(server)), 0);
  return client;
}

class Listener {
 public:
  explicit Listener(const std::string& address)
      : m_socket(socket(parse(address, 0).ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_storage any = parse(address, 0);
    const int off = 0;
    setsockopt(m_socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof(off));
    m_isOpen = bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&any), sizeOf(any)) == 0 &&
               listen(m_socket.get(), 8) == 0;
  }

  [[nodiscard]] bool isOpen() const { return m_isOpen; }
  [[nodiscard]] sockaddr_storage address() const { return ownEnd(m_socket); }
  [[nodiscard]] std::uint16_t port() const {
    const sockaddr_storage own = address();
    sockaddr_in6 end{};  // the port is in the same place for both families
    std::memcpy(&end, &own, sizeof(end));
    return ntohs(end.sin6_port);
  }
  [[nodiscard]] Descriptor accept() const {
    return Descriptor(::accept(m_socket.get(), nullptr, nullptr));
  }

 private:
  const Descriptor m_socket;
  bool m_isOpen = false;
};

std::optional<uid_t> ownerOf(const Descriptor& served) {
  return findTcpClient(otherEnd(served), ownEnd(served));
}

struct Route {
  const char* listens;
  const char* connects;
};

class SocketOwner : public testing::TestWithParam<Route> {
 protected:
  void SetUp() override {
    if (!m_listener.isOpen()) {
      GTEST_SKIP() << "this machine has no " << GetParam().listens;
    }
  }

  [[nodiscard]] sockaddr_storage server() const {
    return parse(GetParam().connects, m_listener.port());
  }

  const Listener m_listener{GetParam().listens};
};

TEST_P(SocketOwner, IsTheUserWhoConnected) {
  const Descriptor client = connectTo(server());
  const Descriptor served = m_listener.accept();
  EXPECT_EQ(ownerOf(served), geteuid());
}

TEST_P(SocketOwner, IsFoundThroughAnInterruption) {
  const Descriptor client = connectTo(server());
  const Descriptor served = m_listener.accept();
  s_isInterrupted = true;
  EXPECT_EQ(ownerOf(served), geteuid());
  EXPECT_FALSE(s_isInterrupted);
}

TEST_P(SocketOwner, IsAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  ChildProcess child([this](ChildProcess::Link& parent) {
    if (seteuid(kUser) != 0) {
      return 1;
    }
    const Descriptor client = connectTo(server());
    parent.tell('c');
    return parent.await('q') ? 0 : 1;
  });
  const Descriptor served = m_listener.accept();
  EXPECT_TRUE(child.link().await('c'));
  EXPECT_EQ(ownerOf(served), kUser);
  child.link().tell('q');
  EXPECT_EQ(child.wait(), 0);
}

// The kernel says that nobody's socket is root's.
TEST_P(SocketOwner, IsNobodyOfAConnectionThatTheClientHasClosed) {
  Descriptor client = connectTo(server());
  const Descriptor served = m_listener.accept();
  const sockaddr_storage other = otherEnd(served);
  ASSERT_TRUE(client.close());
  EXPECT_EQ(findTcpClient(other, ownEnd(served)), std::nullopt);
}

TEST_P(SocketOwner, IsTheUserWhoHasSentAllThereIsToSay) {
  const Descriptor client = connectTo(server());
  const Descriptor served = m_listener.accept();
  ASSERT_EQ(shutdown(client.get(), SHUT_WR), 0);
  EXPECT_EQ(ownerOf(served), geteuid());
}

// The other end has it by then, and has not said all of its own.
TEST_P(SocketOwner, IsTheUserWhoseLastWordHasArrived) {
  const Descriptor client = connectTo(server());
  const Descriptor served = m_listener.accept();
  ASSERT_EQ(shutdown(client.get(), SHUT_WR), 0);
  ASSERT_TRUE(test::waitUntil([&client] {
    tcp_info state{};
    socklen_t size = sizeof state;
    return getsockopt(client.get(), IPPROTO_TCP, TCP_INFO, &state, &size) == 0 &&
           state.tcpi_state == TCP_FIN_WAIT2;
  }));
  EXPECT_EQ(ownerOf(served), geteuid());
}

TEST_P(SocketOwner, IsNobodyWithoutAConnection) {
  const sockaddr_storage server = m_listener.address();
  EXPECT_EQ(findTcpClient(parse(GetParam().connects, 1), server), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Routes, SocketOwner,
                         testing::Values(Route{"127.0.0.1", "127.0.0.1"},
                                         Route{"127.0.0.2", "127.0.0.2"}, Route{"::1", "::1"},
                                         Route{"::", "127.0.0.1"}, Route{"::", "::1"}),
                         [](const testing::TestParamInfo<Route>& entry) {
                           return "Route" + std::to_string(entry.index);
                         });

TEST(TcpClient, IsToldByTheKernel) {
  const test::LogCapture log;
  quorveld::checkTcpClients();
  EXPECT_THAT(log.records(), testing::IsEmpty());
}

TEST(TcpClient, IsMissedInTheLogWhereTheKernelTellsNone) {
  const test::LogCapture log;
  quorveld::checkTcpClients([](const sockaddr_storage& client,
                               const sockaddr_storage& server) noexcept -> std::optional<uid_t> {
    EXPECT_EQ(findTcpClient(client, server), geteuid());
    return std::nullopt;
  });
  EXPECT_THAT(log.messages("quorveld::checkTcpClients"),
              testing::ElementsAre("The kernel does not tell which users connect to loopback "
                                   "addresses, so none of them is served there; load its module "
                                   "tcp_diag, or use the local socket"));
}

TEST(TcpClient, IsNobodyOfAnotherFamily) {
  sockaddr_storage local{};
  local.ss_family = AF_UNIX;
  EXPECT_EQ(findTcpClient(local, parse("127.0.0.1", 1)), std::nullopt);
  EXPECT_EQ(findTcpClient(parse("::1", 1), parse("127.0.0.1", 1)), std::nullopt);
}

TEST(AnyClient, IsFoundByTheSocketAlone) {
  const Listener listener("127.0.0.1");
  const Descriptor client = connectTo(listener.address());
  const Descriptor served = listener.accept();
  EXPECT_EQ(quorveld::findClient(served.get()), geteuid());
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor one(ends[0]);
  const Descriptor other(ends[1]);
  EXPECT_EQ(quorveld::findClient(one.get()), geteuid());
  EXPECT_EQ(quorveld::findClient(-1), std::nullopt);
}

TEST(LocalClient, IsTheUserWhoConnected) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor one(ends[0]);
  const Descriptor other(ends[1]);
  EXPECT_EQ(findLocalClient(one.get()), geteuid());
}

TEST(LocalClient, IsNobodyOfASocketOfAnotherKind) {
  const Listener listener("127.0.0.1");
  const Descriptor client = connectTo(listener.address());
  EXPECT_EQ(findLocalClient(client.get()), std::nullopt);
  EXPECT_EQ(findLocalClient(-1), std::nullopt);
}

}  // namespace
