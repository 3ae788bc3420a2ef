// Makes the system unable to start threads. Defined per platform.

#ifndef ORVEX_TESTS_AGENT_NOMORETHREADS_H_
#define ORVEX_TESTS_AGENT_NOMORETHREADS_H_

#include <memory>

namespace test {

// While one lives, every attempt of the process to start a thread fails.
class NoMoreThreads {
 public:
  // Throws std::runtime_error when the system cannot be changed so.
  NoMoreThreads();
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;
  ~NoMoreThreads();

 private:
  struct Refusal;
  std::unique_ptr<Refusal> m_refusal;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_NOMORETHREADS_H_
