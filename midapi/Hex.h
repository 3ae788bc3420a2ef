// Hexadecimal numbers of a fixed width, as PCI identifiers and error texts write them.

#ifndef ORVEX_MIDAPI_HEX_H_
#define ORVEX_MIDAPI_HEX_H_

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ma {

// Returns `value` in lower case, padded with zeros to at least `width` digits.
inline std::string hexText(std::uint64_t value, std::size_t width) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
  const auto count = static_cast<std::size_t>(end - digits);
  std::string text(width > count ? width - count : 0, '0');
  return text.append(digits, count);
}

// Reads digits of either case without prefix or sign; nullopt unless all of `text` is the number.
inline std::optional<std::uint32_t> parseHex(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (fault != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

}  // namespace ma

#endif  // ORVEX_MIDAPI_HEX_H_
