#include "Utils/Datetime.h"

#include <cstdlib>

#include "Utils/Assert.h"
#include "Utils/Clock.h"
#include "Utils/Format.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Datetime"};

constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;

std::string toIntervalText(std::uint64_t seconds, unsigned microseconds) {
  const auto days = static_cast<unsigned>(seconds / 86'400);
  const auto rest = static_cast<unsigned>(seconds % 86'400);
  return format("%08u%02u%02u%02u.%06u:000", days, rest / 3600, rest / 60 % 60, rest % 60,
                microseconds);
}

std::string toTimestampText(std::uint64_t seconds, unsigned microseconds) {
  // A moment outside the local calendar has no such form; UTC's epoch stands in for it.
  const LocalTime local = toLocalTime(static_cast<std::int64_t>(seconds)).value_or(LocalTime{});
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
