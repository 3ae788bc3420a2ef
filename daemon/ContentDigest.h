// The SHA-256 by which the audit names what was installed.

#ifndef ORVEX_DAEMON_CONTENTDIGEST_H_
#define ORVEX_DAEMON_CONTENTDIGEST_H_

#include <cstdint>
#include <span>
#include <string>

namespace quorveld {

// Returns the hash in hexadecimal digits; why there is none, where the library has none. Any
// thread. Throws std::bad_alloc.
[[nodiscard]] std::string digestContent(std::span<const std::uint8_t> content);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_CONTENTDIGEST_H_
