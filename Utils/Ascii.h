// Text compared without regard to the case of its ASCII letters, whatever the locale: as names of
// CIM elements (DSP0004), field names and media types of HTTP (RFC 9110) and schemes of URIs
// (RFC 3986) are. All other bytes count as they are. Any thread; nothing throws.

#ifndef ORVEX_UTILS_ASCII_H_
#define ORVEX_UTILS_ASCII_H_

#include <algorithm>
#include <string_view>

namespace utils {

// Returns an ASCII capital's small letter, and every other byte as it is.
[[nodiscard]] constexpr char toLowerAscii(char character) noexcept {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

[[nodiscard]] constexpr bool isSameIgnoringCase(std::string_view left,
                                                std::string_view right) noexcept {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char one, char other) { return toLowerAscii(one) == toLowerAscii(other); });
}

// The order that goes with it, for sorting and for the standard's ordered containers, which look a
// std::string_view up without copying it.
struct LessIgnoringCase {
  using is_transparent = void;

  [[nodiscard]] constexpr bool operator()(std::string_view left,
                                          std::string_view right) const noexcept {
    return std::lexicographical_compare(
        left.begin(), left.end(), right.begin(), right.end(),
        [](char one, char other) { return toLowerAscii(one) < toLowerAscii(other); });
  }
};

}  // namespace utils

#endif  // ORVEX_UTILS_ASCII_H_
