// A length of time as an option gives it: 30, 30s, 500ms, 5m, 1h. A number without a unit is
// seconds.

#ifndef ORVEX_CLI_DURATION_H_
#define ORVEX_CLI_DURATION_H_

#include <cstdint>
#include <optional>
#include <string>

namespace cli {

// Returns the milliseconds of a text; nothing for one that is no length of time, or more than 32
// bits hold.
[[nodiscard]] std::optional<std::uint32_t> parseMilliseconds(const std::string& text);

// Returns why an option refuses the text, empty where it does not.
[[nodiscard]] std::string refuseNoDuration(const std::string& text);

}  // namespace cli

#endif  // ORVEX_CLI_DURATION_H_
