#include <ctime>

#include "Utils/Clock.h"

namespace utils {

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
