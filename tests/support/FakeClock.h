// A clock that stands still but for those who wait by it: a sleep is over at once, and noted.
//
// Any thread may sleep and ask. What is to happen after each sleep happens on the thread that
// slept. Who sleeps on and on, since the test did not end what it waits for, gets an exception in
// the end.

#ifndef ORVEX_TESTS_SUPPORT_FAKECLOCK_H_
#define ORVEX_TESTS_SUPPORT_FAKECLOCK_H_

#include <chrono>
#include <functional>
#include <map>
#include <stdexcept>
#include <thread>
#include <utility>

#include "platform/Clock.h"
#include "platform/Mutex.h"
#include "tests/support/WaitUntil.h"

namespace test {

class FakeClock final : public platform::Clock {
 public:
  // Has `act` called after each sleep from now on, with their number so far: 1, 2, 3, ...
  void afterEachSleep(std::function<void(int)> act) {
    const platform::Lock lock(m_mutex);
    m_afterSleep = std::move(act);
    m_actions = 0;
  }

  // Returns how often it was slept, by how long. None of no time, which is no sleep.
  [[nodiscard]] std::map<Duration, int> sleeps() const {
    const platform::Lock lock(m_mutex);
    return m_sleeps;
  }
  // Returns how long it was slept altogether.
  [[nodiscard]] Duration slept() const {
    const platform::Lock lock(m_mutex);
    return m_slept;
  }

  // platform::Clock
  [[nodiscard]] TimePoint now() const override {
    const platform::Lock lock(m_mutex);
    return kStart + m_slept;
  }
  void sleepFor(Duration duration) override {
    if (duration <= Duration::zero()) {
      return;
    }
    noteSleep(duration)();
    if (std::chrono::steady_clock::now() > m_end) {
      throw std::runtime_error("a test's clock was slept by without end");
    }
    // Who waits for another thread step by step must not keep it from running.
    std::this_thread::yield();
  }

 private:
  static constexpr TimePoint kStart{std::chrono::hours(1)};

  std::function<void()> noteSleep(Duration duration) {
    const platform::Lock lock(m_mutex);
    m_slept += duration;
    ++m_sleeps[duration];
    return [act = m_afterSleep, number = ++m_actions] { act(number); };
  }

  const std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::now() + kDeadline;

  mutable platform::Mutex m_mutex;
  Duration m_slept ORVEX_GUARDED_BY(m_mutex){0};
  std::map<Duration, int> m_sleeps ORVEX_GUARDED_BY(m_mutex);
  std::function<void(int)> m_afterSleep ORVEX_GUARDED_BY(m_mutex) = [](int) {};
  int m_actions ORVEX_GUARDED_BY(m_mutex) = 0;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_FAKECLOCK_H_
