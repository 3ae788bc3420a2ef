#include "Os/Posix/PosixOSLocker.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/types.h>
#include <system_error>

#include "Utils/Exception.h"

namespace os {
namespace {

using platform::Clock;

constexpr int kNoSemaphore = -1;
constexpr int kMode = 0666;
constexpr std::chrono::milliseconds kCreationTimeout{1000};
constexpr std::chrono::milliseconds kCreationPoll{1};

// semctl's fourth argument; POSIX leaves its declaration to the caller.
union SemaphoreArgument {
  int value;
  struct semid_ds* status;
};

// Gives a new semaphore its count of 1. Does so only while the count is 0, in one step.
bool setUp(int semaphore) {
  sembuf operations[] = {{0, 0, IPC_NOWAIT}, {0, 1, IPC_NOWAIT}};
  return semop(semaphore, operations, 2) == 0 || errno == EAGAIN;
}

bool isSetUp(int semaphore) {
  semid_ds status{};
  SemaphoreArgument argument{};
  argument.status = &status;
  if (semctl(semaphore, 0, IPC_STAT, argument) != 0) {
    return true;  // Gone or forbidden: the next operation on it tells.
  }
  return status.sem_otime != 0 || semctl(semaphore, 0, GETVAL) > 0;
}

// A semaphore is created with count 0 and set up by a second call. Whoever finds it between the two
// waits for its creator; one that died there is replaced in its duty.
bool awaitSetUp(int semaphore, Clock& clock) {
  const Clock::TimePoint deadline = clock.now() + kCreationTimeout;
  while (!isSetUp(semaphore)) {
    if (clock.now() >= deadline) {
      return setUp(semaphore);
    }
    clock.sleepFor(kCreationPoll);
  }
  return true;
}

// Returns the semaphore's identifier, kNoSemaphore when it can be neither opened nor created.
int openSemaphore(key_t key, Clock& clock) {
  int semaphore = semget(key, 1, IPC_CREAT | IPC_EXCL | kMode);
  if (semaphore >= 0) {
    return setUp(semaphore) ? semaphore : kNoSemaphore;
  }
  semaphore = semget(key, 1, 0);
  return semaphore >= 0 && awaitSetUp(semaphore, clock) ? semaphore : kNoSemaphore;
}

timespec toTimespec(std::chrono::nanoseconds duration) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
  timespec time{};
  time.tv_sec = static_cast<time_t>(seconds.count());
  time.tv_nsec = static_cast<long>((duration - seconds).count());
  return time;
}

bool wasRemoved(int error) {
  return error == EIDRM || error == EINVAL;
}

}  // namespace

const utils::LogSource OSLocker::kLog{"Os/Posix/PosixOSLocker"};

OSLockerPosix::OSLockerPosix(std::int32_t key, Clock& clock)
    : m_key(key), m_clock(clock), m_semaphore(openSemaphore(key, clock)) {
  if (!OSLockerPosix::hasSemaphore()) {
    throw utils::Exception("Could not create synchronisation sempahore");
  }
}

OSLockerPosix::~OSLockerPosix() {
  OSLockerPosix::UnLock();
}

bool OSLockerPosix::hasSemaphore() const {
  return m_semaphore != kNoSemaphore;
}

OSLocker::WaitResult OSLockerPosix::waitForSemaphore(std::uint32_t milliseconds) {
  const Clock::TimePoint deadline = m_clock.now() + std::chrono::milliseconds(milliseconds);
  sembuf take{0, -1, SEM_UNDO};
  for (;;) {
    const auto left = std::max(deadline - m_clock.now(), Clock::Duration::zero());
    const timespec timeout = toTimespec(left);
    if (semtimedop(m_semaphore, &take, 1, &timeout) == 0) {
      return WaitResult::Signalled;
    }
    if (errno == EAGAIN) {
      return WaitResult::TimedOut;
    }
    if (wasRemoved(errno)) {
      // An operator took the semaphore away: everybody meets again at a new one.
      const int renewed = openSemaphore(m_key, m_clock);
      if (renewed == kNoSemaphore) {
        return WaitResult::Failed;
      }
      m_semaphore = renewed;
    } else if (errno != EINTR) {
      return WaitResult::Failed;
    }
  }
}

std::optional<OSLocker::SystemError> OSLockerPosix::releaseSemaphore() {
  sembuf give{0, 1, SEM_UNDO};
  while (semop(m_semaphore, &give, 1) != 0) {
    if (errno != EINTR) {
      return SystemError{errno, std::generic_category().message(errno)};
    }
  }
  return std::nullopt;
}

std::unique_ptr<OSLocker> createOSLocker() {
  return std::make_unique<OSLockerPosix>();
}

}  // namespace os
