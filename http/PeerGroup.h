// Which peers count as one where something is allowed to each of them: who has many addresses at
// hand must not get many shares.

#ifndef ORVEX_HTTP_PEERGROUP_H_
#define ORVEX_HTTP_PEERGROUP_H_

#include <boost/asio/ip/address.hpp>
#include <string>

namespace http {

// The group of this machine's own loopback addresses.
inline constexpr const char* kLoopbackGroup = "127.0.0.1";

// Returns what one client can be expected to hold of addresses:
//
//   127.0.0.0/8, ::1         kLoopbackGroup, since any program here may choose among them
//   another IPv4 address     the address itself
//   another IPv6 address     its first 64 bits: "2001:db8:0:1::/64", whatever its zone
//   an IPv4-mapped address   what the IPv4 address gives
[[nodiscard]] std::string toPeerGroup(const boost::asio::ip::address& address);

// The same of an address as text. Any other text stands for itself.
[[nodiscard]] std::string toPeerGroup(const std::string& address);

}  // namespace http

#endif  // ORVEX_HTTP_PEERGROUP_H_
