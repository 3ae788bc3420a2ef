// System calls that fail when a test says so. Defined per platform.
//
// POSIX: the test program has definitions of its own for them, which pass every other call on to
// the system. Windows: the core library's imports lead to functions of the test.

#ifndef ORVEX_TESTS_OS_SYSTEMFAULTS_H_
#define ORVEX_TESTS_OS_SYSTEMFAULTS_H_

#include <memory>

namespace test {

enum class SystemCall {
  StartThread,    // pthread_create, CreateThread
  CloseThread,    // pthread_join, CloseHandle: done, and then said to have failed
  MakeMutex,      // pthread_mutex_init, CreateMutexA
  CloseMutex,     // pthread_mutex_destroy, CloseHandle: done, and then said to have failed
  LockMutex,      // pthread_mutex_lock, WaitForSingleObject
  UnlockMutex,    // pthread_mutex_unlock, ReleaseMutex
  MakeSemaphore,  // Windows alone: CreateSemaphoreA
  LockFile,       // POSIX alone: flock
  TellLocalTime,  // localtime_r, _mkgmtime64
  Allocate,  // operator new (not under clang's thread sanitizer, which has its own in the program),
             // malloc of the C++ runtime; throws std::bad_alloc
  kCount
};

// An error of Allocate (POSIX): what it throws then is no std::exception.
inline constexpr int kNoStandardException = -1;

// Has the next such call of this thread fail with the error number, if that call comes while this
// object lives.
class FailingCall {
 public:
  FailingCall(SystemCall call, int error);
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  ~FailingCall();

 private:
  struct Seam;

  SystemCall m_call;
  std::unique_ptr<Seam> m_seam;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_SYSTEMFAULTS_H_
