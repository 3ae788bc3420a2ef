#include "Utils/ClockText.h"

#include <algorithm>
#include <cstdint>

#include "Utils/Format.h"

namespace utils {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;

}  // namespace

std::string toClockText(std::chrono::seconds elapsed) {
  const auto seconds = std::max<std::int64_t>(elapsed.count(), 0);
  const auto part = [](std::int64_t value) { return static_cast<int>(value); };
  if (seconds >= kHour) {
    return format("%d:%02d:%02d", part(seconds / kHour), part(seconds % kHour / kMinute),
                  part(seconds % kMinute));
  }
  return format("%02d:%02d", part(seconds / kMinute), part(seconds % kMinute));
}

}  // namespace utils
