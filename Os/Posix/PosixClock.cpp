#include <ctime>

#include "Utils/Clock.h"

namespace utils {

std::optional<LocalTime> toLocalTime(std::int64_t secondsSinceEpoch) {
  const auto seconds = static_cast<std::time_t>(secondsSinceEpoch);
  LocalTime local;
  if (localtime_r(&seconds, &local.fields) == nullptr) {
    return std::nullopt;
  }
  local.utcOffsetMinutes = static_cast<int>(local.fields.tm_gmtoff / 60);
  return local;
}

}  // namespace utils
