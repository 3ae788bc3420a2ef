#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <windows.h>

#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"
#include "platform/Windows/Handle.h"

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
  platform::Handle handle;
};

Mutex::Native& Mutex::native() {
  return *std::launder(reinterpret_cast<Native*>(m_native));
}

Mutex::Mutex() {
  static_assert(sizeof(Native) <= kNativeSize && alignof(Native) <= alignof(void*));
  platform::Handle handle(CreateMutexA(nullptr, FALSE, nullptr));
  if (!handle.isOpen()) {
    const int error = lastError();
    logError(kLog, "utils::Mutex::Mutex", "Could not create mutex %p. Error %d",
             static_cast<void*>(this), error);
    throw Exception("Could not create mutex %p. Error %d", static_cast<void*>(this), error);
  }
  new (m_native) Native{std::move(handle)};
}

Mutex::~Mutex() {
  if (!native().handle.close()) {
    logError(kLog, "utils::Mutex::~Mutex", "Could not close mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
  std::destroy_at(&native());
}

void Mutex::lock() {
  if (WaitForSingleObject(native().handle.get(), INFINITE) != WAIT_OBJECT_0) {
    logError(kLog, "utils::Mutex::Lock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
  s_lockCount.fetch_add(1, std::memory_order_relaxed);
}

void Mutex::unlock() {
  if (ReleaseMutex(native().handle.get()) == FALSE) {
    logError(kLog, "utils::Mutex::Unlock", "Error locking mutex %p. Error %d",
             static_cast<void*>(this), lastError());
  }
  s_unlockCount.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace utils
