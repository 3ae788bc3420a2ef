// The release times of firmware packages: timestamp104 of DSP0240.

#ifndef ORVEX_MIDAPI_PLDMTIME_H_
#define ORVEX_MIDAPI_PLDMTIME_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace ma {

// A moment as the clock showed it where the package was made.
struct PldmTime {
  std::uint16_t year = 0;
  std::uint8_t month = 0;
  std::uint8_t day = 0;
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  std::uint8_t second = 0;  // 60 in a leap second
  std::uint32_t microsecond = 0;
  std::int16_t utcOffset = 0;  // minutes, positive in the east

  // Returns the form of RFC 3339, "2026-11-21T18:04:05+01:00", with microseconds where there are
  // some, and "Z" for UTC.
  [[nodiscard]] std::string toString() const;

  friend bool operator==(const PldmTime&, const PldmTime&) = default;
};

inline constexpr std::size_t kPldmTimeSize = 13;

// Returns null where the fields are no time, all zero for example: packages without one are usual,
// and nothing depends on it. How finely it was measured, the last byte, is not looked at; makers of
// packages leave it 0 whatever the others hold.
[[nodiscard]] std::optional<PldmTime> readPldmTime(
    std::span<const std::uint8_t, kPldmTimeSize> bytes);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PLDMTIME_H_
