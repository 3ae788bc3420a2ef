#include "Utils/Clock.h"

#include "Utils/Format.h"

namespace utils {

std::string timeOfDay() {
  const std::optional<LocalTime> now =
      toLocalTime(static_cast<std::int64_t>(currentMicroseconds() / 1'000'000));
  if (!now) {
    return "??:??:??";
  }
  return format("%02d:%02d:%02d", now->fields.tm_hour, now->fields.tm_min, now->fields.tm_sec);
}

}  // namespace utils
