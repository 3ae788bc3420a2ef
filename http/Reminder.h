// Says whether something is to be logged that may go on for long: once in a while. Private to this
// folder. Any thread may call.

#ifndef ORVEX_HTTP_REMINDER_H_
#define ORVEX_HTTP_REMINDER_H_

#include <atomic>
#include <chrono>

#include "http/Clock.h"

namespace http {

class Reminder {
 public:
  static constexpr std::chrono::minutes kInterval{10};

  // Returns true for one caller in each interval.
  [[nodiscard]] bool isDue(Clock::time_point time = Clock::now()) {
    const Clock::rep now = time.time_since_epoch().count();
    Clock::rep last = m_last.load();
    const bool isSoon = last != 0 && now - last < Clock::duration(kInterval).count();
    return !isSoon && m_last.compare_exchange_strong(last, now);
  }

 private:
  std::atomic<Clock::rep> m_last{0};
};

}  // namespace http

#endif  // ORVEX_HTTP_REMINDER_H_
