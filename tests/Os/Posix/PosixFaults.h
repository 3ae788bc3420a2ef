// System calls that fail when a test says so: the test program has definitions of its own for them,
// which pass every other call on to the system.

#ifndef ORVEX_TESTS_OS_POSIX_POSIXFAULTS_H_
#define ORVEX_TESTS_OS_POSIX_POSIXFAULTS_H_

namespace test {

enum class SystemCall {
  CreateThread,   // pthread_create
  JoinThread,     // pthread_join: done, and then said to have failed
  InitMutex,      // pthread_mutex_init
  DestroyMutex,   // pthread_mutex_destroy: done, and then said to have failed
  LockMutex,      // pthread_mutex_lock
  UnlockMutex,    // pthread_mutex_unlock
  GetSemaphore,   // semget
  TellLocalTime,  // localtime_r
  kCount
};

// Has the next such call of this thread fail with the error number, if that call comes while this
// object lives.
class FailingCall {
 public:
  FailingCall(SystemCall call, int error);
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  ~FailingCall();

 private:
  SystemCall m_call;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_POSIX_POSIXFAULTS_H_
