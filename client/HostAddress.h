// The address of a host as --host gives it: http(s)://[USER@]HOST[:PORT], or unix:[PATH] of the
// local socket of one on this machine. Plain values.

#ifndef ORVEX_CLIENT_HOSTADDRESS_H_
#define ORVEX_CLIENT_HOSTADDRESS_H_

#include <cstdint>
#include <string>

namespace client {

struct HostAddress {
  // Where the service of this machine listens.
  static constexpr const char* kDefaultSocket = "/run/orvex/quorveld.sock";

  bool isTls = false;
  std::string user;  // empty: no login
  std::string host;  // a name, or an address without brackets
  std::uint16_t port = 0;
  std::string path = {};  // of a local socket, which has no login, host and port; else empty

  // Returns "https://server1:5989", without the user, or "unix:/run/orvex/quorveld.sock".
  [[nodiscard]] std::string url() const;
  // Returns whether the host is this machine by its very name: localhost, 127.x.x.x, ::1 or a local
  // socket. Where localhost leads is for the system to say.
  [[nodiscard]] bool isLoopback() const;
  // Returns whether the password would go to the host as anybody on the way can read it.
  [[nodiscard]] bool isLoginReadable() const { return !user.empty() && !isTls; }
};

// Reads an address. The user may have escapes ("%40"); without a port it is 5988, for https 5989;
// without a path it is kDefaultSocket.
// Throws Fault (usage) for anything else, and for one with a password in it.
[[nodiscard]] HostAddress parseHostAddress(const std::string& text);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTADDRESS_H_
