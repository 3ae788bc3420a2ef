// The system's own words for its error codes.

#ifndef ORVEX_OS_WINDOWS_SYSTEMTEXT_H_
#define ORVEX_OS_WINDOWS_SYSTEMTEXT_H_

#include <cstdint>
#include <string>

namespace os {

// Returns FormatMessageA's text for a code of GetLastError(), without the end of its line; empty
// when the system has none.
[[nodiscard]] std::string getSystemText(std::uint32_t error);

// Returns the same with the subject, a file for example, where the text leaves room for one ("%1 is
// not a valid application"); "error CODE" where there is none.
[[nodiscard]] std::string describeSystemError(std::uint32_t error, const std::string& subject);

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_SYSTEMTEXT_H_
