#include "platform/Clock.h"

#include <thread>

namespace platform {
namespace {

class SteadyClock final : public Clock {
 public:
  [[nodiscard]] TimePoint now() const override { return std::chrono::steady_clock::now(); }
  void sleepFor(Duration duration) override { std::this_thread::sleep_for(duration); }
};

}  // namespace

Clock::~Clock() = default;

// Never destroyed: job threads may still wait while the process exits.
Clock& steadyClock() {
  static Clock& clock = *new SteadyClock;
  return clock;
}

}  // namespace platform
