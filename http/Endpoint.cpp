#include "http/Endpoint.h"

namespace http {

std::string joinHostAndPort(const std::string& host, std::uint16_t port) {
  const bool isIpv6 = host.find(':') != std::string::npos;
  return (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::string Endpoint::text() const {
  return path.empty() ? joinHostAndPort(address, port) : kLocalScheme + path;
}

}  // namespace http
