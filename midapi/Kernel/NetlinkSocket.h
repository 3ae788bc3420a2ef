// A socket to the kernel's generic netlink.
//
// Owns the socket. One thread at a time sends, and one receives. Failures are thrown as
// std::system_error with the errno value and what was tried.

#ifndef ORVEX_MIDAPI_KERNEL_NETLINKSOCKET_H_
#define ORVEX_MIDAPI_KERNEL_NETLINKSOCKET_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/Posix/Descriptor.h"

struct mnl_socket;

namespace ma {

class NetlinkSocket {
 public:
  // Asks for the drivers' own words in acknowledgements, and for those without the request.
  NetlinkSocket();

  // Joins a multicast group, by the number that the kernel gave it.
  void join(std::uint32_t group);

  // Returns when the kernel has done what the message asks for: for a flash, when that has ended.
  // The answer waits to be received.
  void send(std::span<const std::uint8_t> message);

  // Returns the next datagram; nothing when none comes in time, where nobody waits any more, or
  // where the kernel has lost some since nobody had received them for too long.
  [[nodiscard]] std::optional<std::vector<std::uint8_t>> receive(
      std::chrono::milliseconds patience);

  // From now on receive() returns what is there, and waits no longer. Any thread may call.
  void endWaiting();

 private:
  struct Closer {
    void operator()(mnl_socket* socket) const;
  };

  std::unique_ptr<mnl_socket, Closer> m_socket;
  platform::Descriptor m_end;  // an event, once nobody waits any more
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_NETLINKSOCKET_H_
