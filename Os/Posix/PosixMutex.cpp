#include <atomic>
#include <cstdint>
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

int initialise(pthread_mutex_t& mutex) {
  pthread_mutexattr_t attributes;
  int error = pthread_mutexattr_init(&attributes);
  if (error != 0) {
    return error;
  }
  error = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  if (error == 0) {
    error = pthread_mutex_init(&mutex, &attributes);
  }
  pthread_mutexattr_destroy(&attributes);
  return error;
}

}  // namespace

struct Mutex::Native {
  pthread_mutex_t mutex;
};

Mutex::Mutex() : m_native(std::make_unique<Native>()) {
  const int error = initialise(m_native->mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Mutex", "Could not create mutex %p. Error %d",
             static_cast<void*>(this), error);
    throw Exception("Could not create mutex %p. Error %d", static_cast<void*>(this), error);
  }
}

Mutex::~Mutex() {
  const int error = pthread_mutex_destroy(&m_native->mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::~Mutex", "Could not close mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
}

void Mutex::lock() {
  const int error = pthread_mutex_lock(&m_native->mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Lock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
  s_lockCount.fetch_add(1, std::memory_order_relaxed);
}

void Mutex::unlock() {
  const int error = pthread_mutex_unlock(&m_native->mutex);
  if (error != 0) {
    logError(kLog, "utils::Mutex::Unlock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), error);
  }
  s_unlockCount.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace utils
