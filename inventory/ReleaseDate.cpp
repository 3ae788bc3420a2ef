#include "inventory/ReleaseDate.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "Utils/Format.h"

namespace inventory {
namespace {

constexpr std::size_t kTimeLength = sizeof("2026-11-21T18:04:05") - 1;
constexpr std::size_t kOffsetLength = sizeof("+01:00") - 1;
constexpr std::size_t kMicrosecondDigits = 6;
constexpr int kMinutesOfHour = 60;

// Returns the digits of a text that is like the pattern, in which zeros stand for digits.
std::optional<std::string> digitsOf(std::string_view text, std::string_view pattern) {
  std::string digits;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const bool isDigit = at < text.size() && text[at] >= '0' && text[at] <= '9';
    if (at >= text.size() || (pattern[at] == '0' ? !isDigit : text[at] != pattern[at])) {
      return std::nullopt;
    }
    if (isDigit) {
      digits += text[at];
    }
  }
  return text.size() == pattern.size() ? std::optional(digits) : std::nullopt;
}

// Returns the sign and three digits of minutes with which DSP0004 ends a time.
std::optional<std::string> toCimOffset(std::string_view text) {
  if (text == "Z") {
    return "+000";
  }
  const auto digits = text.size() == kOffsetLength && (text[0] == '+' || text[0] == '-')
                          ? digitsOf(text.substr(1), "00:00")
                          : std::nullopt;
  if (!digits) {
    return std::nullopt;
  }
  const int hours = (digits->at(0) - '0') * 10 + (digits->at(1) - '0');
  const int minutes = (digits->at(2) - '0') * 10 + (digits->at(3) - '0');
  return text[0] + utils::format("%03d", hours * kMinutesOfHour + minutes);
}

}  // namespace

std::optional<utils::Datetime> readReleaseDate(std::string_view text) {
  const auto time = digitsOf(text.substr(0, kTimeLength), "0000-00-00T00:00:00");
  if (!time) {
    return std::nullopt;
  }
  std::string_view rest = text.substr(kTimeLength);
  std::optional<std::string> fraction(std::string(kMicrosecondDigits, '0'));
  if (rest.starts_with('.')) {
    const std::size_t end = kMicrosecondDigits + 1;
    fraction = digitsOf(rest.substr(0, end), ".000000");
    rest = rest.substr(std::min(end, rest.size()));
  }
  const auto offset = toCimOffset(rest);
  return fraction && offset ? utils::Datetime::fromCimText(*time + "." + *fraction + *offset)
                            : std::nullopt;
}

}  // namespace inventory
