#include "Utils/Clock.h"

#include <chrono>

#include "Utils/Format.h"

namespace utils {

std::uint64_t currentMicroseconds() {
  const auto now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
  return static_cast<std::uint64_t>(now.time_since_epoch().count()) * 1000;
}

std::string timeOfDay() {
  const std::optional<LocalTime> now =
      toLocalTime(static_cast<std::int64_t>(currentMicroseconds() / 1'000'000));
  if (!now) {
    return "??:??:??";
  }
  return format("%02d:%02d:%02d", now->fields.tm_hour, now->fields.tm_min, now->fields.tm_sec);
}

}  // namespace utils
