#include "query/QueryFault.h"

#include <algorithm>

#include "Utils/Printable.h"
#include "platform/Utf8.h"

namespace query {

Position findPosition(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  Position position;
  for (std::size_t at = 0; at < before.size();) {
    if (before[at] == '\n') {
      ++position.line;
      position.column = 1;
      ++at;
      continue;
    }
    const auto character = platform::readCharacter(text.substr(at));
    at += character ? character->length : 1;
    ++position.column;
  }
  return position;
}

std::string toShown(std::string_view part) {
  constexpr std::size_t kMostBytes = 40;
  constexpr unsigned kContinuationMask = 0xC0;
  constexpr unsigned kContinuation = 0x80;
  std::size_t end = std::min(kMostBytes, part.size());
  while (end < part.size() &&
         (static_cast<unsigned char>(part[end]) & kContinuationMask) == kContinuation) {
    ++end;
  }
  return utils::toPrintable(part.substr(0, end)) + (end < part.size() ? "..." : "");
}

QueryFault::QueryFault(Kind kind, std::string_view queryText, std::size_t offset,
                       const std::string& reason)
    : m_kind(kind),
      m_position(findPosition(queryText, std::min(offset, queryText.size()))),
      m_text("line " + std::to_string(m_position.line) + ", column " +
             std::to_string(m_position.column) + ": " + reason) {}

}  // namespace query
