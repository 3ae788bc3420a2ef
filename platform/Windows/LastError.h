// The failure of a call of the system, as an exception.

#ifndef ORVEX_PLATFORM_WINDOWS_LASTERROR_H_
#define ORVEX_PLATFORM_WINDOWS_LASTERROR_H_

#include <system_error>
#include <windows.h>

namespace platform {

// Throws std::system_error with the system's last error. `operation` names the call.
[[noreturn]] inline void throwLastError(const char* operation) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), operation);
}

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_LASTERROR_H_
