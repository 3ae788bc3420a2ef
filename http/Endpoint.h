// An address and a port to listen on, and how such pairs are written.

#ifndef ORVEX_HTTP_ENDPOINT_H_
#define ORVEX_HTTP_ENDPOINT_H_

#include <cstdint>
#include <string>

namespace http {

// Returns "name:80", and with brackets what has colons of its own: "[::1]:80".
[[nodiscard]] std::string joinHostAndPort(const std::string& host, std::uint16_t port);

struct Endpoint {
  std::string address;  // "127.0.0.1", "::1", "0.0.0.0"
  std::uint16_t port = 0;
  bool isTls = false;

  // Returns "127.0.0.1:5988", "[::1]:5988".
  [[nodiscard]] std::string text() const;
};

}  // namespace http

#endif  // ORVEX_HTTP_ENDPOINT_H_
