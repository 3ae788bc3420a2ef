// Who is at the other end of a connection. Private to this folder.

#ifndef ORVEX_HTTP_PEER_H_
#define ORVEX_HTTP_PEER_H_

#include <boost/asio/ip/address.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "http/Asio.h"

namespace http {

struct Peer {
  // "192.0.2.7"; of an IPv4 address in IPv6's clothes, the IPv4 address. "unix" of a local socket.
  std::string address;
  std::string group;                  // of the peers that count as one (toPeerGroup)
  bool isLoopback = false;            // on this machine
  std::optional<std::uint32_t> user;  // the number of a user of this machine, where it is known
};

[[nodiscard]] Peer describePeer(const boost::asio::ip::address& address);
// The same of the other end of a connection. A user of this machine who is known is a group of his
// own, whichever way he comes.
[[nodiscard]] Peer describePeer(const Protocol::endpoint& endpoint,
                                std::optional<std::uint32_t> user);

// Demands an endpoint of TCP.
[[nodiscard]] tcp::endpoint toTcpEndpoint(const Protocol::endpoint& endpoint);

}  // namespace http

#endif  // ORVEX_HTTP_PEER_H_
