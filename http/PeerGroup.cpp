#include "http/PeerGroup.h"

#include <boost/asio/ip/network_v6.hpp>

namespace http {
namespace {

namespace ip = boost::asio::ip;

constexpr unsigned short kClientPrefix = 64;

}  // namespace

std::string toPeerGroup(const ip::address& address) {
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    return toPeerGroup(ip::address(ip::make_address_v4(ip::v4_mapped, address.to_v6())));
  }
  if (address.is_loopback()) {
    return kLoopbackGroup;
  }
  if (address.is_v4()) {
    return address.to_string();
  }
  ip::address_v6 whole = address.to_v6();
  whole.scope_id(0);
  return ip::make_network_v6(whole, kClientPrefix).canonical().to_string();
}

std::string toPeerGroup(const std::string& address) {
  boost::system::error_code error;
  const ip::address parsed = ip::make_address(address, error);
  return error ? address : toPeerGroup(parsed);
}

}  // namespace http
