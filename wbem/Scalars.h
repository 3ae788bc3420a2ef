// Values as CIM-XML writes them (DSP0201, 4.2): truth values and whole numbers.

#ifndef ORVEX_WBEM_SCALARS_H_
#define ORVEX_WBEM_SCALARS_H_

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace wbem {

// Returns the text without blanks, tabs and line ends round it.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Returns nothing for a text that is neither TRUE nor FALSE, in letters of any case.
[[nodiscard]] std::optional<bool> toBoolean(std::string_view text);

// Returns nothing for a text that is no number of the type: decimal, or hexadecimal behind 0x, with
// a sign or without.
template <class Number>
[[nodiscard]] std::optional<Number> toNumber(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) {
    text.remove_prefix(2);
  }
  unsigned long long magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, magnitude, isHexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) {
    return std::nullopt;
  }
  // Up to 63 bits below zero; no CIM type here has more.
  constexpr auto kLargest = static_cast<unsigned long long>(std::numeric_limits<Number>::max());
  const unsigned long long limit =
      !isNegative ? kLargest : (std::is_signed_v<Number> ? kLargest + 1 : 0);
  if (magnitude > limit) {
    return std::nullopt;
  }
  return static_cast<Number>(isNegative ? 0 - magnitude : magnitude);
}

}  // namespace wbem

#endif  // ORVEX_WBEM_SCALARS_H_
