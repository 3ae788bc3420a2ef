#include "Utils/Datetime.h"

#include <algorithm>
#include <cstdlib>

#include "Utils/Assert.h"
#include "Utils/Clock.h"
#include "Utils/Format.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Datetime"};

constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;
constexpr std::uint64_t kSecondsPerDay = 86'400;
constexpr std::uint64_t kLastDay = 99'999'999;  // of an interval; the text has eight digits for it
constexpr int kLastYear = 9999;

// The calendar's form of the epoch, in UTC.
LocalTime epoch() {
  LocalTime time;
  time.fields.tm_year = 70;
  time.fields.tm_mday = 1;
  return time;
}

// Returns the moment in local time; the epoch for one that has no form of four digits for the year.
LocalTime toCalendar(std::uint64_t seconds) {
  const LocalTime local = toLocalTime(static_cast<std::int64_t>(seconds)).value_or(epoch());
  return local.fields.tm_year + 1900 <= kLastYear ? local : epoch();
}

std::string toIntervalText(std::uint64_t seconds, unsigned microseconds) {
  const auto days = static_cast<unsigned>(std::min(seconds / kSecondsPerDay, kLastDay));
  const auto rest = static_cast<unsigned>(seconds % kSecondsPerDay);
  return format("%08u%02u%02u%02u.%06u:000", days, rest / 3600, rest / 60 % 60, rest % 60,
                microseconds);
}

std::string toTimestampText(std::uint64_t seconds, unsigned microseconds) {
  const LocalTime local = toCalendar(seconds);
  const std::tm& t = local.fields;
  return format("%04d%02d%02d%02d%02d%02d.%06u%c%03d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                t.tm_hour, t.tm_min, t.tm_sec, microseconds, local.utcOffsetMinutes < 0 ? '-' : '+',
                std::abs(local.utcOffsetMinutes));
}

}  // namespace

Datetime::Datetime() : value(currentMicroseconds()), isTimestamp(true) {}

Datetime::Datetime(std::uint64_t microseconds) : value(microseconds), isTimestamp(false) {}

void Datetime::setToNow() {
  *this = Datetime();
}

Datetime Datetime::fromSeconds(std::uint32_t seconds) {
  return Datetime(seconds * kMicrosecondsPerSecond);
}

Datetime Datetime::elapsedSince(const Datetime& dtStart) {
  ORVEX_ASSERT(kLog, dtStart.isTimestamp == true);
  return Datetime(currentMicroseconds() - dtStart.value);
}

std::string Datetime::toCimText() const {
  const std::uint64_t seconds = value / kMicrosecondsPerSecond;
  const auto microseconds = static_cast<unsigned>(value % kMicrosecondsPerSecond);
  return isTimestamp ? toTimestampText(seconds, microseconds)
                     : toIntervalText(seconds, microseconds);
}

}  // namespace utils
