#include <atomic>
#include <cstdint>
#include <windows.h>

#include "Os/Windows/Handle.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Os/Windows/WindowsMutex"};

// For a debugger: how often anything in the process was locked and unlocked.
std::atomic<std::uint32_t> s_lockCount{0};
std::atomic<std::uint32_t> s_unlockCount{0};

int lastError() {
  return static_cast<int>(GetLastError());
}

}  // namespace

struct Mutex::Native {
  os::Handle handle;
};

Mutex::Mutex() : m_native(std::make_unique<Native>()) {
  m_native->handle = os::Handle(CreateMutexA(nullptr, FALSE, nullptr));
  if (!m_native->handle.isOpen()) {
    const int error = lastError();
    logError(kLog, "utils::Mutex::Mutex", "Could not create mutex %p. Error %d",
             static_cast<void*>(this), error);
    throw Exception("Could not create mutex %p. Error %d", static_cast<void*>(this), error);
  }
}

Mutex::~Mutex() {
  if (!m_native->handle.close()) {
    logError(kLog, "utils::Mutex::~Mutex", "Could not close mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
}

void Mutex::lock() {
  if (WaitForSingleObject(m_native->handle.get(), INFINITE) != WAIT_OBJECT_0) {
    logError(kLog, "utils::Mutex::Lock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
  s_lockCount.fetch_add(1, std::memory_order_relaxed);
}

void Mutex::unlock() {
  if (ReleaseMutex(m_native->handle.get()) == FALSE) {
    logError(kLog, "utils::Mutex::Unlock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
  s_unlockCount.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace utils
