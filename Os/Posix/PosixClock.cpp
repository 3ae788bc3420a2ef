#include <chrono>
#include <ctime>

#include "Utils/Clock.h"

namespace utils {

std::uint64_t currentMicroseconds() {
  const auto now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
  return static_cast<std::uint64_t>(now.time_since_epoch().count()) * 1000;
}

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
