// Makes the system unable to start threads.

#ifndef ORVEX_TESTS_AGENT_NOMORETHREADS_H_
#define ORVEX_TESTS_AGENT_NOMORETHREADS_H_

#include <cstddef>

namespace test {

// While one lives, every attempt of the process to start a thread fails.
class NoMoreThreads {
 public:
  // Throws std::system_error when the system's defaults cannot be changed.
  NoMoreThreads();
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;
  ~NoMoreThreads();

 private:
  std::size_t m_stackSize = 0;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_NOMORETHREADS_H_
