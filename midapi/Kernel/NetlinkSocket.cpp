#include "midapi/Kernel/NetlinkSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <libmnl/libmnl.h>
#include <linux/netlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>

namespace ma {
namespace {

// The kernel sends no datagram above 32 KiB, see libmnl's MNL_SOCKET_DUMP_SIZE.
constexpr std::size_t kLargestDatagram = 32768;

[[noreturn]] void fail(const char* tried) {
  throw std::system_error(errno, std::generic_category(), tried);
}

// A signal that is handled meanwhile is not the end of the wait; the event `end` is.
bool isReadable(int socket, int end, std::chrono::milliseconds patience) {
  const auto moment = std::chrono::steady_clock::now() + patience;
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(
        std::max(moment - std::chrono::steady_clock::now(), std::chrono::nanoseconds(0)));
    std::array<pollfd, 2> awaited{{{socket, POLLIN, 0}, {end, POLLIN, 0}}};
    const int ready = ::poll(awaited.data(), awaited.size(), static_cast<int>(left.count()));
    if (ready >= 0) {
      return awaited[0].revents != 0;
    }
    if (errno != EINTR) {
      fail("cannot wait for the kernel");
    }
  }
}

}  // namespace

void NetlinkSocket::Closer::operator()(mnl_socket* socket) const {
  mnl_socket_close(socket);
}

NetlinkSocket::NetlinkSocket()
    : m_socket(mnl_socket_open2(NETLINK_GENERIC, SOCK_CLOEXEC)), m_end(::eventfd(0, EFD_CLOEXEC)) {
  if (m_socket == nullptr || !m_end.isOpen()) {
    fail("cannot open a netlink socket");
  }
  // A kernel that knows none of the two says less, and that is no failure.
  for (const int option : {NETLINK_EXT_ACK, NETLINK_CAP_ACK}) {
    int on = 1;
    static_cast<void>(mnl_socket_setsockopt(m_socket.get(), option, &on, sizeof on));
  }
  if (mnl_socket_bind(m_socket.get(), 0, MNL_SOCKET_AUTOPID) != 0) {
    fail("cannot bind a netlink socket");
  }
}

void NetlinkSocket::join(std::uint32_t group) {
  if (mnl_socket_setsockopt(m_socket.get(), NETLINK_ADD_MEMBERSHIP, &group, sizeof group) != 0) {
    fail("cannot join a netlink group");
  }
}

void NetlinkSocket::send(std::span<const std::uint8_t> message) {
  if (mnl_socket_sendto(m_socket.get(), message.data(), message.size()) < 0) {
    fail("cannot send to the kernel");
  }
}

std::optional<std::vector<std::uint8_t>> NetlinkSocket::receive(
    std::chrono::milliseconds patience) {
  if (!isReadable(mnl_socket_get_fd(m_socket.get()), m_end.get(), patience)) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> datagram(kLargestDatagram);
  const ssize_t size = mnl_socket_recvfrom(m_socket.get(), datagram.data(), datagram.size());
  if (size < 0 && errno != ENOBUFS && errno != EINTR && errno != EAGAIN) {
    fail("cannot receive from the kernel");
  }
  if (size < 0) {
    return std::nullopt;
  }
  datagram.resize(static_cast<std::size_t>(size));
  return datagram;
}

void NetlinkSocket::endWaiting() {
  static_cast<void>(::eventfd_write(m_end.get(), 1));
}

}  // namespace ma
