#include "Utils/Printable.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

#include "Utils/Format.h"
#include "platform/Texts.h"

namespace utils {
namespace {

// Lead bytes of UTF-8: what they look like under a mask, how many bytes follow, and from which code
// point on that many are needed.
struct Lead {
  unsigned char mask;
  unsigned char bits;
  std::size_t following;
  std::uint32_t least;
};

constexpr Lead kLeads[] = {
    {0x80, 0x00, 0, 0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

constexpr Range kUnprintable[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},     {0x61C, 0x61C},   {0x200E, 0x200F},
    {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};
constexpr Range kSurrogates{0xD800, 0xDFFF};
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

constexpr bool isIn(const Range& range, std::uint32_t point) {
  return point >= range.first && point <= range.last;
}

struct Character {
  std::uint32_t point;
  std::size_t length;
};

// Returns the character that the text begins with; null where it begins with none.
std::optional<Character> readCharacter(std::string_view text) {
  constexpr unsigned kBits = 6;
  constexpr unsigned char kContinuationMask = 0xC0;
  constexpr unsigned char kContinuation = 0x80;
  constexpr unsigned char kContinuationBits = 0x3F;
  if (text.empty()) {
    return std::nullopt;
  }
  const auto first = static_cast<unsigned char>(text.front());
  for (const Lead& lead : kLeads) {
    if ((first & lead.mask) != lead.bits || text.size() <= lead.following) {
      continue;
    }
    std::uint32_t point = first & static_cast<unsigned char>(~lead.mask);
    for (std::size_t i = 1; i <= lead.following; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if ((byte & kContinuationMask) != kContinuation) {
        return std::nullopt;
      }
      point = (point << kBits) | (byte & kContinuationBits);
    }
    const bool isSound =
        point >= lead.least && point <= kLastCodePoint && !isIn(kSurrogates, point);
    return isSound ? std::optional(Character{point, lead.following + 1}) : std::nullopt;
  }
  return std::nullopt;
}

bool isPrintable(std::uint32_t point) {
  return std::none_of(std::begin(kUnprintable), std::end(kUnprintable),
                      [point](const Range& range) { return isIn(range, point); });
}

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
  const std::optional<Character> character = readCharacter(text);
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
    const std::optional<Character> character = readCharacter(json);
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
