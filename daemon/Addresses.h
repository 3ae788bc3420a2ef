// IP addresses as texts: what the host asks about them.

#ifndef ORVEX_DAEMON_ADDRESSES_H_
#define ORVEX_DAEMON_ADDRESSES_H_

#include <optional>
#include <string>
#include <string_view>

#include "http/Endpoint.h"

namespace quorveld {

// Returns whether the text is an address of this machine alone: 127.0.0.0/8, ::1. A name is none.
[[nodiscard]] bool isLoopbackAddress(const std::string& address);

// Reads "[https:]ADDRESS:PORT", an IPv6 address in brackets, or "unix:PATH" with an absolute path.
// Returns null for anything else.
[[nodiscard]] std::optional<http::Endpoint> parseEndpoint(std::string_view text);

// Returns whether the Host field of a request names this machine by a loopback address, or by
// "localhost": what a web page that has its own name point to this machine cannot send.
[[nodiscard]] bool isLoopbackHost(std::string_view hostField);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_ADDRESSES_H_
