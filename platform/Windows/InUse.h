// Files that another program has open in such a way that this one cannot do with them what it
// would.
//
// They are waited for: a scanner or a copy lets go in a moment, and what somebody holds longer he
// does not let go in the time that a caller waits.

#ifndef ORVEX_PLATFORM_WINDOWS_INUSE_H_
#define ORVEX_PLATFORM_WINDOWS_INUSE_H_

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>

#include "platform/Clock.h"

namespace platform {

// How long a file is waited for that others have open.
inline constexpr std::chrono::seconds kInUsePatience{2};
inline constexpr std::chrono::milliseconds kInUsePause{1};

using SystemError = std::uint32_t;  // what GetLastError returns

// Returns whether a call failed because somebody has the file open.
[[nodiscard]] bool isInUse(SystemError error);

// Returns whether somebody has the file or folder open in such a way that nobody may replace it,
// which the system calls forbidden.
[[nodiscard]] bool isOpenElsewhere(const std::filesystem::path& path);

// Makes the attempt, which returns its error, 0 for none, until `mayPass` denies that waiting helps
// or the patience is at its end. Returns the last error.
SystemError retryWhile(const std::function<bool(SystemError)>& mayPass, Clock& clock,
                       const std::function<SystemError()>& attempt);

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_INUSE_H_
