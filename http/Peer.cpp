#include "http/Peer.h"

#include "http/PeerGroup.h"

namespace http {

Peer describePeer(const boost::asio::ip::address& address) {
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    return describePeer(
        boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, address.to_v6()));
  }
  return Peer{address.to_string(), toPeerGroup(address), address.is_loopback()};
}

}  // namespace http
