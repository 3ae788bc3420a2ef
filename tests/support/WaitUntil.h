// Waiting for a condition, with a deadline that only a failing test reaches.

#ifndef ORVEX_TESTS_SUPPORT_WAITUNTIL_H_
#define ORVEX_TESTS_SUPPORT_WAITUNTIL_H_

#include <chrono>
#include <thread>

namespace test {

inline constexpr std::chrono::seconds kDeadline{30};

// Returns whether the condition came to hold.
template <class Condition>
[[nodiscard]] bool waitUntil(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WAITUNTIL_H_
