// The wall clock, as log records, time stamps and jobs use it.

#ifndef ORVEX_UTILS_CLOCK_H_
#define ORVEX_UTILS_CLOCK_H_

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "Utils/Export.h"

namespace utils {

// Returns the microseconds since 1970-01-01 00:00 UTC, with millisecond resolution. Windows:
// _ftime64_s. Defined per platform.
[[nodiscard]] ORVEX_CORE_API std::uint64_t currentMicroseconds();

// A moment in the local time zone.
struct LocalTime {
  std::tm fields{};
  int utcOffsetMinutes = 0;
};

// Returns nothing when the moment cannot be expressed in local time. Defined per platform.
[[nodiscard]] std::optional<LocalTime> toLocalTime(std::int64_t secondsSinceEpoch);

// Returns "hh:mm:ss" of the current local time, "??:??:??" when that cannot be had.
[[nodiscard]] ORVEX_CORE_API std::string timeOfDay();

}  // namespace utils

#endif  // ORVEX_UTILS_CLOCK_H_
