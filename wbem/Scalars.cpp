#include "wbem/Scalars.h"

#include "Utils/Ascii.h"

namespace wbem {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<bool> toBoolean(std::string_view text) {
  text = trimmed(text);
  if (utils::isSameIgnoringCase(text, "TRUE")) {
    return true;
  }
  if (utils::isSameIgnoringCase(text, "FALSE")) {
    return false;
  }
  return std::nullopt;
}

}  // namespace wbem
