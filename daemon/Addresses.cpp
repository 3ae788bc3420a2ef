#include "daemon/Addresses.h"

#include <boost/asio/ip/address.hpp>
#include <charconv>
#include <cstdint>

#include "Utils/Ascii.h"

namespace quorveld {
namespace {

namespace ip = boost::asio::ip;

constexpr std::string_view kTls = "https:";

std::optional<ip::address> parseAddress(const std::string& text) {
  boost::system::error_code error;
  ip::address address = ip::make_address(text, error);
  if (error) {
    return std::nullopt;
  }
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    address = ip::make_address_v4(ip::v4_mapped, address.to_v6());
  }
  return address;
}

std::optional<std::uint16_t> parsePort(std::string_view text) {
  std::uint16_t port = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  if (error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return port;
}

// Takes the brackets off an IPv6 address, which cannot stand before a port without them.
std::optional<std::string> unwrap(std::string_view text) {
  const bool hasColon = text.find(':') != std::string_view::npos;
  if (text.starts_with('[') && text.ends_with(']')) {
    return hasColon ? std::optional(std::string(text.substr(1, text.size() - 2))) : std::nullopt;
  }
  return hasColon ? std::nullopt : std::optional(std::string(text));
}

}  // namespace

bool isLoopbackAddress(const std::string& address) {
  const std::optional<ip::address> parsed = parseAddress(address);
  return parsed && parsed->is_loopback();
}

std::optional<http::Endpoint> parseEndpoint(std::string_view text) {
  http::Endpoint endpoint;
  if (text.starts_with(http::kLocalScheme)) {
    endpoint.path = text.substr(std::string_view(http::kLocalScheme).size());
    return endpoint.path.starts_with('/') ? std::optional(endpoint) : std::nullopt;
  }
  if (text.starts_with(kTls)) {
    endpoint.isTls = true;
    text.remove_prefix(kTls.size());
  }
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  const std::optional<std::string> address = unwrap(text.substr(0, colon));
  const std::optional<std::uint16_t> port = parsePort(text.substr(colon + 1));
  if (!address || !port || !parseAddress(*address)) {
    return std::nullopt;
  }
  endpoint.address = *address;
  endpoint.port = *port;
  return endpoint;
}

bool isLoopbackHost(std::string_view hostField) {
  std::string_view name = hostField;
  const std::size_t colon = name.rfind(':');
  if (colon != std::string_view::npos && parsePort(name.substr(colon + 1))) {
    name = name.substr(0, colon);
  }
  if (utils::isSameIgnoringCase(name, "localhost")) {
    return true;
  }
  if (name.starts_with('[') && name.ends_with(']')) {
    name = name.substr(1, name.size() - 2);
  }
  return isLoopbackAddress(std::string(name));
}

}  // namespace quorveld
