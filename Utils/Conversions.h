// Text helpers of the object model and the configuration. They hold no state; any thread may call.

#ifndef ORVEX_UTILS_CONVERSIONS_H_
#define ORVEX_UTILS_CONVERSIONS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Export.h"

namespace utils {

// The quote character of a split() in which nothing is quoted.
inline constexpr char kNoQuote = '\0';

// Returns `text` without leading and trailing blanks and tabs.
[[nodiscard]] ORVEX_CORE_API std::string trim(const std::string& text);

// Returns `text` in double quotes, each double quote inside behind a backslash; unquote() gives it
// back. A backslash stays single, so split() takes the closing quote behind one that ends the text
// for an escaped quote.
[[nodiscard]] ORVEX_CORE_API std::string quote(const std::string& text);

// Takes the double quotes off a text that begins and ends with one (two characters at the least)
// and undoes the escapes of quote(); returns any other text as it is.
[[nodiscard]] ORVEX_CORE_API std::string unquote(const std::string& text);

// Returns the pieces of `text` between the separators that stand outside quoted sections. Quote
// characters and backslashes stay in the pieces; a backslash before a quote character keeps it from
// closing its section. An empty text has no pieces; otherwise there is one more than separators.
[[nodiscard]] ORVEX_CORE_API std::vector<std::string> split(std::string_view text, char separator,
                                                            char quoteCharacter);

// Converts a canonical unsigned number: decimal without sign or leading zeros and below 2^31, or
// hexadecimal behind 0x. Returns false, and leaves `value` alone, for anything else. `text` is
// trimmed, and put into upper case when it began with a number.
[[nodiscard]] ORVEX_CORE_API bool toUint(std::string& text, std::uint32_t& value);

// Returns `text` with the ASCII letters a to z in upper case.
[[nodiscard]] ORVEX_CORE_API std::string toUpper(std::string text);

}  // namespace utils

#endif  // ORVEX_UTILS_CONVERSIONS_H_
