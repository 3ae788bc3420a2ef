#include "midapi/PldmTime.h"

#include <chrono>
#include <cstdlib>

namespace ma {
namespace {

// Where the fields stand.
constexpr std::size_t kUtcOffset = 0;
constexpr std::size_t kMicrosecond = 2;
constexpr std::size_t kSecond = 5;
constexpr std::size_t kMinute = 6;
constexpr std::size_t kHour = 7;
constexpr std::size_t kDay = 8;
constexpr std::size_t kMonth = 9;
constexpr std::size_t kYear = 10;

constexpr int kMinutesOfHour = 60;
constexpr int kMinutesOfDay = 24 * kMinutesOfHour;

std::string padded(std::uint64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width > digits.size() ? width - digits.size() : 0, '0') + digits;
}

bool isTime(const PldmTime& time) {
  constexpr std::uint8_t kLeapSecond = 60;
  constexpr std::uint32_t kMicroseconds = 1'000'000;
  constexpr std::uint16_t kLastYear = 9999;  // of the texts' four digits
  const std::chrono::year_month_day date{
      std::chrono::year(time.year), std::chrono::month(time.month), std::chrono::day(time.day)};
  return date.ok() && time.year <= kLastYear && time.hour < 24 && time.minute < kMinutesOfHour &&
         time.second <= kLeapSecond && time.microsecond < kMicroseconds &&
         std::abs(time.utcOffset) < kMinutesOfDay;
}

}  // namespace

std::string PldmTime::toString() const {
  std::string text = padded(year, 4) + "-" + padded(month, 2) + "-" + padded(day, 2) + "T" +
                     padded(hour, 2) + ":" + padded(minute, 2) + ":" + padded(second, 2);
  if (microsecond != 0) {
    text += "." + padded(microsecond, 6);
  }
  if (utcOffset == 0) {
    return text + "Z";
  }
  const auto minutes = static_cast<unsigned>(std::abs(utcOffset));
  return text + (utcOffset < 0 ? "-" : "+") + padded(minutes / kMinutesOfHour, 2) + ":" +
         padded(minutes % kMinutesOfHour, 2);
}

std::optional<PldmTime> readPldmTime(std::span<const std::uint8_t, kPldmTimeSize> bytes) {
  const auto number16 = [&bytes](std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
  };
  PldmTime time;
  time.utcOffset = static_cast<std::int16_t>(number16(kUtcOffset));
  time.microsecond = number16(kMicrosecond) | std::uint32_t{bytes[kMicrosecond + 2]} << 16;
  time.second = bytes[kSecond];
  time.minute = bytes[kMinute];
  time.hour = bytes[kHour];
  time.day = bytes[kDay];
  time.month = bytes[kMonth];
  time.year = number16(kYear);
  return isTime(time) ? std::optional(time) : std::nullopt;
}

}  // namespace ma
