#include "Utils/Datetime.h"

#include <algorithm>
#include <charconv>
#include <chrono>
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

// The form "yyyymmddhhmmss.mmmmmmsutc", or "ddddddddhhmmss.mmmmmm:000".
constexpr std::size_t kTextLength = 25;
constexpr std::size_t kPointPlace = 14;
constexpr std::size_t kSignPlace = 21;

// Reads digits, one number behind the other; remembers when something else was there.
class DigitReader {
 public:
  explicit DigitReader(std::string_view text) : m_text(text) {}

  std::uint64_t read(std::size_t place, std::size_t count, std::uint64_t most) {
    const std::string_view digits = m_text.substr(place, count);
    std::uint64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    m_isGood = m_isGood && error == std::errc() && stop == end && number <= most;
    return number;
  }
  [[nodiscard]] bool isGood() const { return m_isGood; }

 private:
  const std::string_view m_text;
  bool m_isGood = true;
};

// Returns the microseconds of the time of day in the text.
std::uint64_t readTimeOfDay(DigitReader& reader) {
  const std::uint64_t hours = reader.read(8, 2, 23);
  const std::uint64_t minutes = reader.read(10, 2, 59);
  const std::uint64_t seconds = reader.read(12, 2, 59);
  const std::uint64_t microseconds = reader.read(kPointPlace + 1, 6, kMicrosecondsPerSecond - 1);
  return ((hours * 60 + minutes) * 60 + seconds) * kMicrosecondsPerSecond + microseconds;
}

// Returns nothing for a day that the calendar lacks.
std::optional<std::int64_t> readDay(DigitReader& reader) {
  const auto year = static_cast<int>(reader.read(0, 4, kLastYear));
  const auto month = static_cast<unsigned>(reader.read(4, 2, 12));
  const auto day = static_cast<unsigned>(reader.read(6, 2, 31));
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  if (!reader.isGood() || !date.ok()) {
    return std::nullopt;
  }
  return std::chrono::sys_days(date).time_since_epoch().count();
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

std::optional<Datetime> Datetime::fromCimText(std::string_view text) {
  if (text.size() != kTextLength || text[kPointPlace] != '.') {
    return std::nullopt;
  }
  DigitReader reader(text);
  const char sign = text[kSignPlace];
  const std::uint64_t offset = reader.read(kSignPlace + 1, 3, sign == ':' ? 0 : 999);
  const std::uint64_t timeOfDay = readTimeOfDay(reader);
  if (sign == ':') {
    const std::uint64_t days = reader.read(0, 8, kLastDay);
    return reader.isGood()
               ? std::optional(Datetime(days * kSecondsPerDay * kMicrosecondsPerSecond + timeOfDay))
               : std::nullopt;
  }
  const std::optional<std::int64_t> day = readDay(reader);
  if ((sign != '+' && sign != '-') || !day || !reader.isGood()) {
    return std::nullopt;
  }
  const auto ahead = static_cast<std::int64_t>(offset * 60) * (sign == '-' ? -1 : 1);
  const std::int64_t seconds = *day * static_cast<std::int64_t>(kSecondsPerDay) - ahead;
  const std::int64_t moment = seconds * static_cast<std::int64_t>(kMicrosecondsPerSecond) +
                              static_cast<std::int64_t>(timeOfDay);
  if (moment < 0) {
    return std::nullopt;
  }
  Datetime value(static_cast<std::uint64_t>(moment));
  value.isTimestamp = true;
  return value;
}

std::string Datetime::toCimText() const {
  const std::uint64_t seconds = value / kMicrosecondsPerSecond;
  const auto microseconds = static_cast<unsigned>(value % kMicrosecondsPerSecond);
  return isTimestamp ? toTimestampText(seconds, microseconds)
                     : toIntervalText(seconds, microseconds);
}

}  // namespace utils
