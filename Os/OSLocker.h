// The machine-wide flash lock: only one program on the machine programs adapter flash at a time.
//
// One locker is registered per process; it is created by the host of the flash operations before
// the first of them. Programs of this maker share one lock:
//   POSIX    the kernel's lock (flock) of the file /run/lock/RavlApplySemaphore, which is root's;
//            see Posix/LockFile.h. The kernel gives the lock back when its holder dies.
//   Windows  the semaphore "Global\RavlApplySemaphore" of count 1, open to everyone.
// Any thread may call. Within a process a second Lock() does not wait but answers 2.

#ifndef ORVEX_OS_OSLOCKER_H_
#define ORVEX_OS_OSLOCKER_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Utils/Exception.h"
#include "Utils/Export.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"
#include "Utils/Singleton.h"
#include "platform/Mutex.h"

namespace os {
class OSLocker;
}

namespace utils {
template <>
ORVEX_CORE_API Singleton<os::OSLocker>*& Singleton<os::OSLocker>::slot();
}

namespace os {

// The process that has the flash lock.
struct LockHolder {
  std::string program;
  int process = 0;
  std::string user;
  std::chrono::steady_clock::time_point since;

  // Returns for example "quorvel, process 4711, user root, for 00:12".
  [[nodiscard]] ORVEX_CORE_API std::string toString(
      std::chrono::steady_clock::time_point now) const;
};

class ORVEX_CORE_API OSLocker : public utils::Singleton<OSLocker> {
 public:
  class AutoOSLocker;

  static constexpr const char* kTypeName = "os::OSLocker";

  // What Lock() answers.
  enum Result : std::int32_t { kLocked = 0, kError = 1, kInUse = 2, kTimeout = 3 };

  // The name that the lock of this platform logs under. Defined per platform.
  static const utils::LogSource kLog;

  // A derived locker releases the lock, when it is still held, in its own destructor.
  ~OSLocker() override;

  // Waits for the semaphore, at most for the configured timeout, and takes it. Returns a Result.
  [[nodiscard]] virtual std::int32_t Lock();
  // Gives the semaphore back. Returns 0, also when it is not held; 1 when that failed.
  virtual std::int32_t UnLock();

  // Returns whom a Lock() of the process waits for at the moment, as LockHolder::toString() has it,
  // or "another program" where that is not known; empty while none waits. Logs nothing.
  [[nodiscard]] static std::string describeAwaited();
  // Returns the same of whom the last Lock() waited for in vain; empty where that had no timeout.
  // Behind "another program" stand those that have the semaphore open, where the platform tells
  // them (Windows; see utils::refusal::kSemaphoreIsOpenIn): one of them may be the holder, and
  // while one is there, a holder that died leaves the semaphore taken.
  [[nodiscard]] static std::string describeTimeout();
  // Returns why the last Lock() answered 1, for a person; empty where it did not, or nobody knows.
  [[nodiscard]] static std::string describeFailure();

  // Has this process write no flash from now on: a Lock() that waits ends as one whose time is up,
  // at once where the platform can end a wait (POSIX), and no later one takes the semaphore.
  // Returns false, and changes nothing, where a Lock() of this process has had it already.
  [[nodiscard]] static bool giveUp();

 protected:
  // What waiting for the semaphore came to, with the numbers that Windows gives.
  enum class WaitResult : std::int32_t { Signalled = 0, TimedOut = 258, Failed = -1 };

  struct SystemError {
    int code;
    std::string text;  // empty when the system has none
  };

  OSLocker();

  // Returns whether the semaphore could be created or opened.
  [[nodiscard]] virtual bool hasSemaphore() const = 0;
  // Takes the semaphore; waits for `milliseconds` at the most, and no longer once isGivenUp().
  [[nodiscard]] virtual WaitResult waitForSemaphore(std::uint32_t milliseconds) = 0;
  // Adds 1 to the semaphore. Returns nothing on success.
  [[nodiscard]] virtual std::optional<SystemError> releaseSemaphore() = 0;

  // To be called by waitForSemaphore() when it has to wait: for whom, nothing where it does not
  // know.
  void noteWait(std::optional<LockHolder> holder);
  // The same of one who waited in vain for somebody that he does not know: the processes that may
  // have it, in words; none where that is not known either.
  void noteCandidates(std::string candidates);
  // To be called by whoever finds, within a Lock(), that the semaphore cannot be had, and why.
  // Tells it on standard error, too: whoever asked for the update may read no log.
  void noteFailure(std::string reason);
  // What describeAwaited() returns, of this locker.
  [[nodiscard]] std::string describeWait() const;
  [[nodiscard]] bool isGivenUp() const;

 private:
  // Waits for the time of the settings. Throws what waitForSemaphore() does.
  [[nodiscard]] WaitResult awaitSemaphore();
  // Notes that the semaphore is had. Returns false where it must not be.
  [[nodiscard]] bool noteHad();
  void forgetFailure();
  // Returns whom it was in vain for, empty without a timeout; "another program" where there is no
  // memory for more.
  std::string endWait(WaitResult result);

  utils::Mutex m_lock;
  bool m_isLocked ORVEX_GUARDED_BY(m_lock) = false;

  mutable platform::Mutex m_waitMutex;  // a leaf
  bool m_isWaiting ORVEX_GUARDED_BY(m_waitMutex) = false;
  std::optional<LockHolder> m_holder ORVEX_GUARDED_BY(m_waitMutex);
  std::string m_candidates ORVEX_GUARDED_BY(m_waitMutex);
  std::string m_timeoutHolder ORVEX_GUARDED_BY(m_waitMutex);
  std::string m_failure ORVEX_GUARDED_BY(m_waitMutex);
  bool m_wasHad ORVEX_GUARDED_BY(m_waitMutex) = false;
  bool m_isGivenUp ORVEX_GUARDED_BY(m_waitMutex) = false;  // then it never was had
};

// Holds the flash lock for the span of a block.
class ORVEX_CORE_API OSLocker::AutoOSLocker {
 public:
  // Throws utils::Exception "Locking access to the Fennelbrook returns %d" when Lock() answers
  // anything but 0.
  AutoOSLocker();
  AutoOSLocker(const AutoOSLocker&) = delete;
  AutoOSLocker& operator=(const AutoOSLocker&) = delete;
  ~AutoOSLocker();
};

// The lock cannot be had. The text is "Could not create synchronisation sempahore".
class ORVEX_CORE_API LockFault final : public utils::Exception {
 public:
  explicit LockFault(std::string reason);
  // Returns why, for a person.
  [[nodiscard]] const std::string& reason() const { return m_reason; }

 private:
  std::string m_reason;
};

// Returns a new locker of the platform, which registers itself. Throws LockFault. Defined per
// platform.
[[nodiscard]] ORVEX_CORE_API std::unique_ptr<OSLocker> createOSLocker();

// The same for a host that serves on without the lock: where it cannot be created, returns a locker
// that has no semaphore, and so answers every Lock() by kError, after a line on standard error that
// says why.
[[nodiscard]] ORVEX_CORE_API std::unique_ptr<OSLocker> createOSLockerOrSubstitute();

}  // namespace os

#endif  // ORVEX_OS_OSLOCKER_H_
