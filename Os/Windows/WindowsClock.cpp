#include <ctime>
#include <sys/timeb.h>

#include "Utils/Clock.h"

namespace utils {

std::uint64_t currentMicroseconds() {
  struct __timeb64 now {};
  static_cast<void>(_ftime64_s(&now));  // it fails for a null pointer alone
  return (static_cast<std::uint64_t>(now.time) * 1000 + now.millitm) * 1000;
}

std::optional<LocalTime> toLocalTime(std::int64_t secondsSinceEpoch) {
  const __time64_t seconds = secondsSinceEpoch;
  LocalTime local;
  if (_localtime64_s(&local.fields, &seconds) != 0) {
    return std::nullopt;
  }
  // Read as if it were UTC, the local time is ahead of the moment by the offset. The runtime knows
  // the years 1970 to 3000.
  std::tm fields = local.fields;
  const __time64_t asUtc = _mkgmtime64(&fields);
  if (asUtc == -1) {
    return std::nullopt;
  }
  local.utcOffsetMinutes = static_cast<int>((asUtc - seconds) / 60);
  return local;
}

}  // namespace utils
