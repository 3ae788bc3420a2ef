// Who is at the other end of a connection. Private to this folder.

#ifndef ORVEX_HTTP_PEER_H_
#define ORVEX_HTTP_PEER_H_

#include <boost/asio/ip/address.hpp>
#include <string>

namespace http {

struct Peer {
  std::string address;  // "192.0.2.7"; of an IPv4 address in IPv6's clothes, the IPv4 address
  std::string group;    // of the peers that count as one (toPeerGroup)
  bool isLoopback = false;
};

[[nodiscard]] Peer describePeer(const boost::asio::ip::address& address);

}  // namespace http

#endif  // ORVEX_HTTP_PEER_H_
