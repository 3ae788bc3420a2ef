// A thread that begins when its end is awaited, and no sooner.

#ifndef ORVEX_TESTS_OS_POSIX_LATETHREAD_H_
#define ORVEX_TESTS_OS_POSIX_LATETHREAD_H_

#include <memory>

namespace test {

// Has the next thread that this thread starts begin when this thread waits for the end of one, if
// it is started while this object lives; its end is awaited in that time, too.
class LateThread {
 public:
  struct Start;

  LateThread();
  LateThread(const LateThread&) = delete;
  LateThread& operator=(const LateThread&) = delete;
  ~LateThread();

 private:
  const std::unique_ptr<Start> m_start;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_POSIX_LATETHREAD_H_
