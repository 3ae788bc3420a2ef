// A recursive mutex, and the scoped lock through which it is taken.
//
// The owning thread may lock again; each lock needs its unlock. Waits have no time limit. A failure
// of the platform is logged at error level and otherwise ignored, except that a mutex that cannot
// be created throws. Defined per platform.

#ifndef ORVEX_UTILS_MUTEX_H_
#define ORVEX_UTILS_MUTEX_H_

#include <cstddef>

#include "Utils/Export.h"
#include "platform/ThreadAnnotations.h"

namespace utils {

class ORVEX_CORE_API ORVEX_CAPABILITY("mutex") Mutex {
 public:
  // Throws utils::Exception "Could not create mutex %p. Error %d".
  Mutex();
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;
  virtual ~Mutex();

  // For ScopedLock; everybody else takes the mutex through one.
  void lock() ORVEX_ACQUIRE();
  void unlock() ORVEX_RELEASE();

 private:
  struct Native;
  [[nodiscard]] Native& native();

  // Room for the platform's mutex: a list of an object's properties has one of these, so that it
  // must not cost an allocation.
  static constexpr std::size_t kNativeSize = 48;
  alignas(void*) std::byte m_native[kNativeSize];
};

// Holds a mutex for the span of a block.
class ORVEX_SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(Mutex& mutex) ORVEX_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;
  ~ScopedLock() ORVEX_RELEASE() { m_mutex.unlock(); }

 private:
  Mutex& m_mutex;
};

}  // namespace utils

#endif  // ORVEX_UTILS_MUTEX_H_
