// Text that came from elsewhere (a file, a host, a client), made fit for a terminal, a record or a
// line of a log: nothing in it can command the terminal, begin a line of its own, or show in
// another order than it stands. Any thread.
//
// Escaped is each character that platform::isPrintable (platform/Utf8.h) says does not show as
// itself, and each byte that belongs to no character.

#ifndef ORVEX_UTILS_PRINTABLE_H_
#define ORVEX_UTILS_PRINTABLE_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "Utils/Export.h"

namespace utils {

// Returns how many bytes of UTF-8 text its first character has, where that shows as itself; 0 for
// one that has to be escaped, for a byte that begins none, and for no text.
[[nodiscard]] ORVEX_CORE_API std::size_t lengthOfPrintable(std::string_view text);

// Returns a text of the program (see platform/Texts.h) on one line, with escapes in the place of
// what must not show as itself: "\n", "\t", "\r", and "\x1b" for each other byte.
[[nodiscard]] ORVEX_CORE_API std::string toPrintable(std::string_view text);

// The same for what this program has put together: its lines stay lines, its tabs tabs.
[[nodiscard]] ORVEX_CORE_API std::string toPrintableLines(std::string_view text);

// Returns JSON in UTF-8 with "\u202e" in the place of what must not show as itself: the same
// document for a program that reads it. Its line ends stay.
[[nodiscard]] ORVEX_CORE_API std::string toPrintableJson(std::string_view json);

}  // namespace utils

#endif  // ORVEX_UTILS_PRINTABLE_H_
