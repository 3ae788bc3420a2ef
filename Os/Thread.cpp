#include "Utils/Thread.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <typeinfo>

#include "Os/NativeThread.h"
#include "Utils/Exception.h"
#include "Utils/Mutex.h"

namespace utils {
namespace {

constexpr const LogSource& kLog = os::NativeThread::kLog;

// For a debugger: how many bodies run at the moment.
std::atomic<std::int32_t> s_runningBodies{0};

}  // namespace

struct Thread::State {
  Mutex stopMutex;
  bool isStopRequested ORVEX_GUARDED_BY(stopMutex) = false;
  Mutex startMutex;
  bool isStarted ORVEX_GUARDED_BY(startMutex) = false;
  os::NativeThread thread ORVEX_GUARDED_BY(startMutex);

  // Returns the thread that was started, null when there is none. It is awaited without the lock,
  // since its body may ask whether it has ended. (No analysis looks into a destructor.)
  os::NativeThread* started() {
    const ScopedLock lock(startMutex);
    return isStarted ? &thread : nullptr;
  }
};

Thread::Thread() : m_state(std::make_unique<State>()) {}

Thread::~Thread() {
  cancel();
  if (os::NativeThread* const started = m_state->started()) {
    const int error = started->join();
    if (error != 0) {
      logError(kLog, "utils::Thread::~Thread", "Could not close thread %p. Error %d",
               static_cast<void*>(this), error);
    }
  }
}

void Thread::start() {
  const ScopedLock lock(m_state->startMutex);
  if (m_state->isStarted) {
    // The record names the object by the low digits of its address.
    logError(kLog, "utils::Thread::start", "Attempt to mutliple thread start %d",
             static_cast<int>(reinterpret_cast<std::intptr_t>(this)));
    return;
  }
  // The module whose code runs is the one of the derived class.
  const int error = m_state->thread.start(
      [](void* thread) { enter(*static_cast<Thread*>(thread)); }, this, &typeid(*this));
  if (error != 0) {
    throw Exception("Could not start thread %p. Error %d", static_cast<void*>(this), error);
  }
  m_state->isStarted = true;
}

void Thread::cancel() {
  const ScopedLock lock(m_state->stopMutex);
  m_state->isStopRequested = true;
}

bool Thread::hasEnded() const {
  const ScopedLock lock(m_state->startMutex);
  return m_state->thread.hasEnded();
}

void Thread::enter(Thread& thread) noexcept {
  s_runningBodies.fetch_add(1, std::memory_order_relaxed);
  bool isStopRequested = false;
  {
    const ScopedLock lock(thread.m_state->stopMutex);
    isStopRequested = thread.m_state->isStopRequested;
  }
  if (!isStopRequested) {
    try {
      thread.run();
    } catch (const std::exception& error) {
      logError(kLog, "utils::Thread::enter", "Thread %p ended by an exception: %s",
               static_cast<void*>(&thread), error.what());
    } catch (...) {
      logError(kLog, "utils::Thread::enter", "Thread %p ended by an unknown exception",
               static_cast<void*>(&thread));
    }
  }
  s_runningBodies.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace utils
