#include "tests/Os/SystemFaults.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <future>
#include <new>
#include <pthread.h>
#include <string>
#include <sys/file.h>
#include <utility>

#include "tests/Os/Posix/LateThread.h"

namespace test {

struct LateThread::Start {
  void* (*body)(void*) = nullptr;
  void* argument = nullptr;
  std::promise<void> isAwaited;
  std::future<void> toBeAwaited = isAwaited.get_future();
};

namespace {

// Null where no thread is to be late.
thread_local LateThread::Start* s_lateStart = nullptr;

void* runLate(void* start) {
  auto* const late = static_cast<LateThread::Start*>(start);
  late->toBeAwaited.wait();
  return late->body(late->argument);
}

// By call; 0 for one that is to succeed.
thread_local int s_errors[static_cast<std::size_t>(SystemCall::kCount)];

int takeError(SystemCall call) {
  return std::exchange(s_errors[static_cast<std::size_t>(call)], 0);
}

// Returns the system's own function of that name. A sanitizer has to see the call too: what it
// would have put in the place of the function, were there none here, has a name of its own in its
// library.
template <class Function>
Function* systemFunction(Function*, const char* name) {
  void* found = dlsym(RTLD_DEFAULT, (std::string("__interceptor_") + name).c_str());
  return reinterpret_cast<Function*>(found != nullptr ? found : dlsym(RTLD_NEXT, name));
}

}  // namespace

// The definitions below are always there.
struct FailingCall::Seam {};

FailingCall::FailingCall(SystemCall call, int error) : m_call(call) {
  s_errors[static_cast<std::size_t>(call)] = error;
}

FailingCall::~FailingCall() {
  takeError(m_call);
}

LateThread::LateThread() : m_start(std::make_unique<Start>()) {
  s_lateStart = m_start.get();
}

LateThread::~LateThread() {
  s_lateStart = nullptr;
}

}  // namespace test

#define SYSTEM_FUNCTION(name) static auto* const system = test::systemFunction(&name, #name)

// The library looks for these in the program first.
#pragma GCC visibility push(default)
extern "C" {

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                   void* argument) noexcept {
  SYSTEM_FUNCTION(pthread_create);
  const int error = test::takeError(test::SystemCall::StartThread);
  if (error != 0) {
    return error;
  }
  test::LateThread::Start* const late = test::s_lateStart;
  if (late == nullptr || late->body != nullptr) {
    return system(thread, attributes, body, argument);
  }
  late->body = body;
  late->argument = argument;
  return system(thread, attributes, test::runLate, late);
}

int pthread_join(pthread_t thread, void** result) {
  SYSTEM_FUNCTION(pthread_join);
  const int error = test::takeError(test::SystemCall::CloseThread);
  if (test::s_lateStart != nullptr) {
    test::s_lateStart->isAwaited.set_value();
  }
  const int outcome = system(thread, result);
  return error != 0 ? error : outcome;
}

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
  SYSTEM_FUNCTION(pthread_mutex_init);
  const int error = test::takeError(test::SystemCall::MakeMutex);
  return error != 0 ? error : system(mutex, attributes);
}

int pthread_mutex_destroy(pthread_mutex_t* mutex) noexcept {
  SYSTEM_FUNCTION(pthread_mutex_destroy);
  const int error = test::takeError(test::SystemCall::CloseMutex);
  const int outcome = system(mutex);
  return error != 0 ? error : outcome;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  SYSTEM_FUNCTION(pthread_mutex_lock);
  const int error = test::takeError(test::SystemCall::LockMutex);
  return error != 0 ? error : system(mutex);
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  SYSTEM_FUNCTION(pthread_mutex_unlock);
  const int error = test::takeError(test::SystemCall::UnlockMutex);
  return error != 0 ? error : system(mutex);
}

int flock(int file, int operation) noexcept {
  SYSTEM_FUNCTION(flock);
  errno = test::takeError(test::SystemCall::LockFile);
  return errno != 0 ? -1 : system(file, operation);
}

std::tm* localtime_r(const std::time_t* time, std::tm* fields) noexcept {
  SYSTEM_FUNCTION(localtime_r);
  errno = test::takeError(test::SystemCall::TellLocalTime);
  return errno != 0 ? nullptr : system(time, fields);
}

}  // extern "C"

#ifndef QUORVEL_TEST_THREAD_SANITIZER
void* operator new(std::size_t size) {
  const int error = test::takeError(test::SystemCall::Allocate);
  if (error == test::kNoStandardException) {
    throw error;  // NOLINT(misc-throw-by-value-catch-by-reference): it is the point
  }
  if (error == 0) {
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
      return memory;
    }
  }
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return test::takeError(test::SystemCall::Allocate) != 0 ? nullptr
                                                          : std::malloc(size != 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
#endif

#pragma GCC visibility pop
