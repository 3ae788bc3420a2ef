// The characters of UTF-8 text, and which of them show as themselves on a terminal. Plain
// functions, any thread.

#ifndef ORVEX_PLATFORM_UTF8_H_
#define ORVEX_PLATFORM_UTF8_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

inline constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

struct Utf8Character {
  std::uint32_t point = 0;
  std::size_t length = 0;  // in bytes
};

// Returns the character that the text begins with; null where it begins with none.
[[nodiscard]] std::optional<Utf8Character> readCharacter(std::string_view text);

// Returns false for
//   U+0000..U+001F, U+007F, U+0080..U+009F    control characters
//   U+061C, U+200E, U+200F, U+202A..U+202E,   what turns the direction of writing
//     U+2066..U+2069
//   U+2028, U+2029                            what begins a line or a paragraph
//   U+FEFF                                    what is not seen at all
// and for what is no character (a surrogate, or beyond the last one).
[[nodiscard]] bool isPrintable(std::uint32_t point);

// Appends the character, which must be one: no surrogate, and not beyond the last one.
void appendCharacter(std::string& text, std::uint32_t point);

}  // namespace platform

#endif  // ORVEX_PLATFORM_UTF8_H_
