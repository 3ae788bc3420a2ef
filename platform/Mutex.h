// A plain mutex, and the scoped lock through which it is taken, which clang's analysis knows.
//
// Not recursive: a thread that locks again waits for ever (utils::Mutex is for those who call
// back). A condition is waited for with std::condition_variable_any, which takes the mutex itself.

#ifndef ORVEX_PLATFORM_MUTEX_H_
#define ORVEX_PLATFORM_MUTEX_H_

#include <mutex>

#include "platform/ThreadAnnotations.h"

namespace platform {

class ORVEX_CAPABILITY("mutex") Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;
  ~Mutex() = default;

  // For Lock and conditions; everybody else takes the mutex through a Lock.
  void lock() ORVEX_ACQUIRE() { m_mutex.lock(); }
  void unlock() ORVEX_RELEASE() { m_mutex.unlock(); }

 private:
  std::mutex m_mutex;
};

// Holds a mutex for the span of a block.
class ORVEX_SCOPED_CAPABILITY Lock {
 public:
  explicit Lock(Mutex& mutex) ORVEX_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() ORVEX_RELEASE() { m_mutex.unlock(); }

 private:
  Mutex& m_mutex;
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_MUTEX_H_
