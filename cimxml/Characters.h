// The characters that an XML 1.0 document may hold, in UTF-8. Plain functions.

#ifndef ORVEX_CIMXML_CHARACTERS_H_
#define ORVEX_CIMXML_CHARACTERS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace cimxml {

[[nodiscard]] constexpr bool isXmlCharacter(std::uint32_t code) {
  return code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code <= 0xD7FF) ||
         (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

[[nodiscard]] constexpr bool isXmlBlank(char sign) {
  return sign == ' ' || sign == '\t' || sign == '\n' || sign == '\r';
}

// Returns how many bytes the character takes with which the text begins; 0 where the text is empty
// or begins with none that XML allows.
[[nodiscard]] std::size_t getCharacterLength(std::string_view text);

// Returns a text of more bytes than `most` cut behind a whole character, with "..." in the place of
// the rest; any other text as it is.
[[nodiscard]] std::string shorten(std::string_view text, std::size_t most);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_CHARACTERS_H_
