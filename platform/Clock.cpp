#include "platform/Clock.h"

#include <thread>

namespace platform {
namespace {

class SteadyClock final : public Clock {
 public:
  [[nodiscard]] TimePoint now() const override { return std::chrono::steady_clock::now(); }
  // Windows counts in milliseconds, and may return within the one before.
  void sleepFor(Duration duration) override {
    const TimePoint end = now() + duration;
    for (Duration left = duration; left > Duration::zero(); left = end - now()) {
      std::this_thread::sleep_for(left);
    }
  }
};

}  // namespace

Clock::~Clock() = default;

// Never destroyed: job threads may still wait while the process exits.
Clock& steadyClock() {
  static Clock& clock = *new SteadyClock;
  return clock;
}

}  // namespace platform
