#include "http/Peer.h"

#include <algorithm>
#include <boost/asio/local/stream_protocol.hpp>
#include <cstring>

#include "http/PeerGroup.h"

namespace http {

Peer describePeer(const boost::asio::ip::address& address) {
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    return describePeer(
        boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, address.to_v6()));
  }
  return Peer{address.to_string(), toPeerGroup(address), address.is_loopback(), std::nullopt};
}

Peer describePeer(const Protocol::endpoint& endpoint, std::optional<std::uint32_t> user) {
  if (endpoint.protocol().family() == asio::local::stream_protocol().family()) {
    return Peer{"unix", "user " + (user ? std::to_string(*user) : "unknown"), true, user};
  }
  Peer peer = describePeer(toTcpEndpoint(endpoint).address());
  peer.user = user;
  if (user) {
    peer.group = "user " + std::to_string(*user);  // whichever way it comes
  }
  return peer;
}

tcp::endpoint toTcpEndpoint(const Protocol::endpoint& endpoint) {
  tcp::endpoint converted;
  std::memcpy(converted.data(), endpoint.data(), std::min(endpoint.size(), converted.capacity()));
  return converted;
}

}  // namespace http
