#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <pthread.h>

#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Os/Posix/PosixMutex"};

// For a debugger: how often anything in the process was locked and unlocked.
std::atomic<std::uint32_t> s_lockCount{0};
std::atomic<std::uint32_t> s_unlockCount{0};

// The attributes of every mutex, which are made once.
class Attributes {
 public:
  Attributes() : m_error(pthread_mutexattr_init(&m_attributes)) {
    if (m_error == 0) {
      m_error = pthread_mutexattr_settype(&m_attributes, PTHREAD_MUTEX_RECURSIVE);
    }
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() = default;

  [[nodiscard]] int initialise(pthread_mutex_t& mutex) const {
    return m_error != 0 ? m_error : pthread_mutex_init(&mutex, &m_attributes);
  }

 private:
  pthread_mutexattr_t m_attributes{};
  int m_error;
};

int initialise(pthread_mutex_t& mutex) {
  static const Attributes attributes;
  return attributes.initialise(mutex);
}

}  // namespace

struct Mutex::Native {
  pthread_mutex_t mutex;
};

Mutex::Native& Mutex::native() {
  return *std::launder(reinterpret_cast<Native*>(m_native));
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the native mutex is made in its place.
Mutex::Mutex() {
  static_assert(sizeof(Native) <= kNativeSize && alignof(Native) <= alignof(void*));
  auto* made = new (m_native) Native;
  const int error = initialise(made->mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Mutex", "Could not create mutex %p. Error %d",
             static_cast<void*>(this), error);
    throw Exception("Could not create mutex %p. Error %d", static_cast<void*>(this), error);
  }
}

Mutex::~Mutex() {
  const int error = pthread_mutex_destroy(&native().mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::~Mutex", "Could not close mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
}

void Mutex::lock() {
  const int error = pthread_mutex_lock(&native().mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Lock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
  s_lockCount.fetch_add(1, std::memory_order_relaxed);
}

void Mutex::unlock() {
  const int error = pthread_mutex_unlock(&native().mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Unlock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
  s_unlockCount.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace utils
