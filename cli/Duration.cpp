#include "cli/Duration.h"

#include <charconv>
#include <limits>
#include <string_view>

namespace cli {
namespace {

struct Unit {
  std::string_view name;
  std::uint64_t milliseconds;
};

constexpr Unit kUnits[] = {{"", 1000}, {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}};

}  // namespace

std::optional<std::uint32_t> parseMilliseconds(const std::string& text) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc()) {
    return std::nullopt;
  }
  for (const Unit& unit : kUnits) {
    if (unit.name == std::string_view(stop, static_cast<std::size_t>(end - stop)) &&
        number <= kMost / unit.milliseconds) {
      return static_cast<std::uint32_t>(number * unit.milliseconds);
    }
  }
  return std::nullopt;
}

std::string refuseNoDuration(const std::string& text) {
  return parseMilliseconds(text) ? ""
                                 : "'" + text + "' is no length of time; write 30s, 5m or 500ms";
}

}  // namespace cli
