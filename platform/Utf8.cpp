#include "platform/Utf8.h"

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

constexpr unsigned kBits = 6;
constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuation = 0x80;
constexpr unsigned char kContinuationBits = 0x3F;

// Lead bytes: what they look like under a mask, how many bytes follow, and from which code point on
// that many are needed.
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

constexpr bool isIn(const Range& range, std::uint32_t point) {
  return point >= range.first && point <= range.last;
}

constexpr bool isCharacter(std::uint32_t point) {
  return point <= kLastCodePoint && !isIn(kSurrogates, point);
}

}  // namespace

std::optional<Utf8Character> readCharacter(std::string_view text) {
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
    const bool isSound = point >= lead.least && isCharacter(point);
    return isSound ? std::optional(Utf8Character{point, lead.following + 1}) : std::nullopt;
  }
  return std::nullopt;
}

bool isPrintable(std::uint32_t point) {
  return isCharacter(point) &&
         std::none_of(std::begin(kUnprintable), std::end(kUnprintable),
                      [point](const Range& range) { return isIn(range, point); });
}

void appendCharacter(std::string& text, std::uint32_t point) {
  const Lead* lead = std::begin(kLeads);
  while (std::next(lead) != std::end(kLeads) && std::next(lead)->least <= point) {
    ++lead;
  }
  auto shift = static_cast<unsigned>(lead->following) * kBits;
  text += static_cast<char>(lead->bits | (point >> shift));
  while (shift > 0) {
    shift -= kBits;
    text += static_cast<char>(kContinuation | ((point >> shift) & kContinuationBits));
  }
}

}  // namespace platform
