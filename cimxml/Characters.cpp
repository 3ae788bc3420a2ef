#include "cimxml/Characters.h"

#include <array>

namespace cimxml {

std::size_t getCharacterLength(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) {
    return isXmlCharacter(lead) ? 1 : 0;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
    return 0;
  }
  std::uint32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0U) != 0x80) {
      return 0;
    }
    code = (code << 6U) | (next & 0x3FU);
  }
  // The least code of each length: a shorter one in a longer form is no UTF-8.
  constexpr std::array<std::uint32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  return code >= kLeast[length] && isXmlCharacter(code) ? length : 0;
}

std::string shorten(std::string_view text, std::size_t most) {
  if (text.size() <= most) {
    return std::string(text);
  }
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
    --end;
  }
  return std::string(text.substr(0, end)) + "...";
}

}  // namespace cimxml
