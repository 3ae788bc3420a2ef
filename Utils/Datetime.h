// A point in time or a length of time, in microseconds (millisecond resolution). A plain value.

#ifndef ORVEX_UTILS_DATETIME_H_
#define ORVEX_UTILS_DATETIME_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Utils/Export.h"

namespace utils {

struct ORVEX_CORE_API Datetime {
  // The current moment.
  Datetime();
  // An interval.
  explicit Datetime(std::uint64_t microseconds);

  void setToNow();

  [[nodiscard]] static Datetime fromSeconds(std::uint32_t seconds);
  // Returns the interval from `dtStart`, which must be a point in time (else utils::Exception), to
  // now.
  [[nodiscard]] static Datetime elapsedSince(const Datetime& dtStart);

  // Reads what toCimText() writes, with any UTC offset. Returns nothing for any other text, for one
  // with asterisks in the place of digits, and for a point in time before the epoch.
  [[nodiscard]] static std::optional<Datetime> fromCimText(std::string_view text);

  // Returns the form of a CIM datetime value (DMTF DSP0004, 5.2.4): "yyyymmddhhmmss.mmmmmmsutc" in
  // local time with its UTC offset in minutes, or "ddddddddhhmmss.mmmmmm:000". Always 25
  // characters: the epoch stands for a moment after the year 9999, 99999999 days for more of them.
  [[nodiscard]] std::string toCimText() const;

  std::uint64_t value;  // since the epoch (1970-01-01 UTC), or the length of the interval
  bool isTimestamp;
};

}  // namespace utils

#endif  // ORVEX_UTILS_DATETIME_H_
