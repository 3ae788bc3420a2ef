// The time that passes, and waiting for it, as an argument: a test brings a clock that it moves
// itself.
//
// Not the time of day (see Utils/Clock.h). Any thread may call.

#ifndef ORVEX_PLATFORM_CLOCK_H_
#define ORVEX_PLATFORM_CLOCK_H_

#include <chrono>

namespace platform {

class Clock {
 public:
  using Duration = std::chrono::nanoseconds;
  using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock();

  // Returns a moment that is never before one that was returned earlier.
  [[nodiscard]] virtual TimePoint now() const = 0;

  // Returns when the duration has passed; at once for none and for a negative one.
  virtual void sleepFor(Duration duration) = 0;

  // Returns at the moment; at once when it has passed.
  void sleepUntil(TimePoint moment) { sleepFor(moment - now()); }
};

// Returns the machine's own, which no change of the time of day moves. Lives as long as the
// process.
[[nodiscard]] Clock& steadyClock();

}  // namespace platform

#endif  // ORVEX_PLATFORM_CLOCK_H_
