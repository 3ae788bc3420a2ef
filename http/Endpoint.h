// What a server listens on, and how that is written: an address and a port, or the path of a local
// socket.

#ifndef ORVEX_HTTP_ENDPOINT_H_
#define ORVEX_HTTP_ENDPOINT_H_

#include <cstdint>
#include <string>

namespace http {

// Returns "name:80", and with brackets what has colons of its own: "[::1]:80".
[[nodiscard]] std::string joinHostAndPort(const std::string& host, std::uint16_t port);

// What stands before the path of a local socket.
inline constexpr const char* kLocalScheme = "unix:";

struct Endpoint {
  std::string address;  // "127.0.0.1", "::1", "0.0.0.0"
  std::uint16_t port = 0;
  bool isTls = false;
  std::string path = {};  // of a local socket, which has no address and no port; else empty

  // Returns "127.0.0.1:5988", "[::1]:5988", "unix:/run/orvex/quorveld.sock".
  [[nodiscard]] std::string text() const;
};

}  // namespace http

#endif  // ORVEX_HTTP_ENDPOINT_H_
