#include "daemon/Posix/SocketOwner.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/time.h>

#include "Utils/Log.h"
#include "platform/Posix/Descriptor.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"SocketOwner"};

// States of the kernel's include/net/tcp_states.h: ESTABLISHED, and FIN_WAIT1 and FIN_WAIT2, of a
// client that has sent all it has to say.
constexpr std::uint32_t kConnected = (1U << 1) | (1U << 4) | (1U << 5);
constexpr std::uint32_t kStates = 32;
// The kernel answers at once; this is for one that does not.
constexpr timeval kPatience{2, 0};

struct Request {
  nlmsghdr header;
  inet_diag_req_v2 body;
};

// Copies an address and its port as the kernel's request has them. Returns the family, AF_UNSPEC
// for one that TCP does not know.
sa_family_t copyEnd(const sockaddr_storage& address, __be32* words, __be16& port) {
  if (address.ss_family == AF_INET) {
    sockaddr_in end{};
    std::memcpy(&end, &address, sizeof(end));
    std::memcpy(words, &end.sin_addr, sizeof(end.sin_addr));
    port = end.sin_port;
    return AF_INET;
  }
  if (address.ss_family == AF_INET6) {
    sockaddr_in6 end{};
    std::memcpy(&end, &address, sizeof(end));
    port = end.sin6_port;
    if (IN6_IS_ADDR_V4MAPPED(&end.sin6_addr)) {
      // The client's own socket is one of IPv4.
      std::memcpy(words, end.sin6_addr.s6_addr + 12, 4);
      return AF_INET;
    }
    std::memcpy(words, &end.sin6_addr, sizeof(end.sin6_addr));
    return AF_INET6;
  }
  return AF_UNSPEC;
}

// Asks for one socket, by its own end first.
bool ask(int netlink, sa_family_t family, const inet_diag_sockid& id) {
  Request request{};
  request.header.nlmsg_len = sizeof(request);
  request.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  request.header.nlmsg_flags = NLM_F_REQUEST;
  request.body.sdiag_family = static_cast<__u8>(family);
  request.body.sdiag_protocol = IPPROTO_TCP;
  request.body.idiag_states = kConnected;
  request.body.id = id;
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  return ::sendto(netlink, &request, sizeof(request), 0, reinterpret_cast<const sockaddr*>(&kernel),
                  sizeof(kernel)) == sizeof(request);
}

bool readOwnEnd(const platform::Descriptor& socket, sockaddr_storage& address) {
  socklen_t size = sizeof(address);
  return ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) == 0;
}

std::optional<uid_t> readOwner(int netlink) {
  alignas(nlmsghdr) std::array<std::byte, 8192> buffer{};
  ssize_t count = -1;
  do {
    count = ::recv(netlink, buffer.data(), buffer.size(), 0);
  } while (count < 0 && errno == EINTR);
  nlmsghdr header{};
  inet_diag_msg message{};
  constexpr std::size_t kBody = NLMSG_HDRLEN;
  if (count < static_cast<ssize_t>(kBody + sizeof(message))) {
    return std::nullopt;
  }
  std::memcpy(&header, buffer.data(), sizeof(header));
  if (header.nlmsg_type != SOCK_DIAG_BY_FAMILY) {
    return std::nullopt;  // an error: there is no such socket
  }
  std::memcpy(&message, buffer.data() + kBody, sizeof(message));
  // Without an inode it is nobody's any more.
  const bool isOwned = message.idiag_inode != 0 && message.idiag_state < kStates &&
                       (kConnected & (1U << message.idiag_state)) != 0;
  if (!isOwned) {
    return std::nullopt;
  }
  return message.idiag_uid;
}

}  // namespace

std::optional<uid_t> findTcpClient(const sockaddr_storage& client,
                                   const sockaddr_storage& server) noexcept {
  inet_diag_sockid id{};
  const sa_family_t family = copyEnd(client, id.idiag_src, id.idiag_sport);
  if (family == AF_UNSPEC || copyEnd(server, id.idiag_dst, id.idiag_dport) != family) {
    return std::nullopt;
  }
  id.idiag_cookie[0] = INET_DIAG_NOCOOKIE;
  id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
  const platform::Descriptor netlink(
      ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  if (!netlink.isOpen() ||
      ::setsockopt(netlink.get(), SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof(kPatience)) != 0 ||
      !ask(netlink.get(), family, id)) {
    return std::nullopt;
  }
  return readOwner(netlink.get());
}

void checkTcpClients(FindTcpClient find) noexcept {
  const platform::Descriptor server(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const platform::Descriptor client(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  // A packet filter that swallows what is sent here must not hold the start up.
  static_cast<void>(
      ::setsockopt(client.get(), SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof(kPatience)));
  sockaddr_in loopback{};
  loopback.sin_family = AF_INET;
  loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  sockaddr_storage serverEnd{};
  sockaddr_storage clientEnd{};
  if (::bind(server.get(), reinterpret_cast<const sockaddr*>(&loopback), sizeof(loopback)) != 0 ||
      ::listen(server.get(), 1) != 0 || !readOwnEnd(server, serverEnd) ||
      ::connect(client.get(), reinterpret_cast<const sockaddr*>(&serverEnd), sizeof(loopback)) !=
          0 ||
      !readOwnEnd(client, clientEnd)) {
    return;
  }
  if (!find(clientEnd, serverEnd)) {
    utils::logError(
        kLog, "quorveld::checkTcpClients",
        "The kernel does not tell which users connect to loopback addresses, so none of "
        "them is served there; load its module tcp_diag, or use the local socket");
  }
}

std::optional<uid_t> findLocalClient(int socket) noexcept {
  ucred credentials{};
  socklen_t size = sizeof(credentials);
  sockaddr_storage address{};
  socklen_t addressSize = sizeof(address);
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &addressSize) != 0 ||
      address.ss_family != AF_UNIX ||
      ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0 ||
      credentials.pid == 0) {
    return std::nullopt;
  }
  return credentials.uid;
}

std::optional<uid_t> findClient(int socket) noexcept {
  sockaddr_storage own{};
  sockaddr_storage other{};
  socklen_t ownSize = sizeof(own);
  socklen_t otherSize = sizeof(other);
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&own), &ownSize) != 0) {
    return std::nullopt;
  }
  if (own.ss_family == AF_UNIX) {
    return findLocalClient(socket);
  }
  if (::getpeername(socket, reinterpret_cast<sockaddr*>(&other), &otherSize) != 0) {
    return std::nullopt;
  }
  return findTcpClient(other, own);
}

}  // namespace quorveld
