// Who this process runs for, and who files belong to, by their security identifiers.

#ifndef ORVEX_MIDAPI_WINDOWS_USERS_H_
#define ORVEX_MIDAPI_WINDOWS_USERS_H_

#include <string>

namespace ma {

// Return an identifier as text, for example S-1-5-21-1004: that of a SID, and that of the process's
// user. Throw std::system_error.
[[nodiscard]] std::wstring identifierOf(void* sid);
[[nodiscard]] std::wstring identifierOfProcess();

// Returns the name that the system knows, for example MACHINE\anna; the identifier where it knows
// none.
[[nodiscard]] std::wstring nameOf(const std::wstring& identifier);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_USERS_H_
