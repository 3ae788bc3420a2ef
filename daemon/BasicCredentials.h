// What a client sends to log in by HTTP Basic authentication (RFC 7617, UTF-8).

#ifndef ORVEX_DAEMON_BASICCREDENTIALS_H_
#define ORVEX_DAEMON_BASICCREDENTIALS_H_

#include <optional>
#include <string>
#include <string_view>

namespace quorveld {

struct BasicCredentials {
  std::string user;
  std::string password;  // may hold colons, may be empty
};

// Reads the value of an Authorization field. Returns null for another scheme, for what is no
// base64, and for a user that is empty or a text with a control character.
[[nodiscard]] std::optional<BasicCredentials> parseBasicCredentials(std::string_view field);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_BASICCREDENTIALS_H_
