#include "Utils/Printable.h"

#include <optional>

#include "Utils/Format.h"
#include "platform/Texts.h"
#include "platform/Utf8.h"

namespace utils {
namespace {

using platform::isPrintable;
using platform::readCharacter;

// Returns the escape of the byte, but the byte itself where it is one of those that stay.
std::string escapeOf(char character, std::string_view staying) {
  if (staying.find(character) != std::string_view::npos) {
    return std::string(1, character);
  }
  switch (character) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return format("\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(character)));
  }
}

std::string escape(std::string_view systemText, std::string_view staying) {
  // What a code page has for characters are none of UTF-8.
  const std::string utf8 = platform::toUtf8(std::string(systemText));
  std::string result;
  result.reserve(utf8.size());
  for (std::string_view text = utf8; !text.empty();) {
    const std::size_t length = lengthOfPrintable(text);
    if (length > 0) {
      result += text.substr(0, length);
      text.remove_prefix(length);
      continue;
    }
    // All bytes of a character are escaped, since those behind the first one begin none.
    result += escapeOf(text.front(), staying);
    text.remove_prefix(1);
  }
  return platform::fromUtf8(result);
}

}  // namespace

std::size_t lengthOfPrintable(std::string_view text) {
  const std::optional<platform::Utf8Character> character = readCharacter(text);
  return character && isPrintable(character->point) ? character->length : 0;
}

std::string toPrintable(std::string_view text) {
  return escape(text, "");
}

std::string toPrintableLines(std::string_view text) {
  return escape(text, "\n\t");
}

std::string toPrintableJson(std::string_view json) {
  std::string result;
  result.reserve(json.size());
  while (!json.empty()) {
    const std::optional<platform::Utf8Character> character = readCharacter(json);
    const std::size_t length = character ? character->length : 1;
    // What JSON has of control characters outside of its texts are line ends.
    if (character && character->point != '\n' && !isPrintable(character->point)) {
      result += format("\\u%04x", static_cast<unsigned>(character->point));
    } else {
      result += json.substr(0, length);
    }
    json.remove_prefix(length);
  }
  return result;
}

}  // namespace utils
