// Several threads that do the same at the same time.

#ifndef ORVEX_TESTS_UTILS_RUNONTHREADS_H_
#define ORVEX_TESTS_UTILS_RUNONTHREADS_H_

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace test {

// Runs `body` on `count` threads, which all begin at the same moment.
template <class Body>
void runOnThreads(int count, Body body) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      ready.fetch_add(1);
      while (ready.load() < count) {
        std::this_thread::yield();
      }
      body(i);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace test

#endif  // ORVEX_TESTS_UTILS_RUNONTHREADS_H_
