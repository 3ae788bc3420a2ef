// Something that a handler waits for and a test brings about.

#ifndef ORVEX_TESTS_HTTP_GATE_H_
#define ORVEX_TESTS_HTTP_GATE_H_

#include <atomic>
#include <future>

#include "tests/support/WaitUntil.h"

namespace test {

class Gate {
 public:
  void open() { m_opened.set_value(); }
  void pass() {
    ++m_arrived;
    m_future.wait();
  }
  [[nodiscard]] bool waitForArrivals(int count) const {
    return test::waitUntil([&] { return m_arrived >= count; });
  }

 private:
  std::promise<void> m_opened;
  std::shared_future<void> m_future{m_opened.get_future()};
  std::atomic<int> m_arrived{0};
};

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_GATE_H_
