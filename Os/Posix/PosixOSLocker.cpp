#include "Os/Posix/PosixOSLocker.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace os {
namespace {

using platform::Clock;

constexpr utils::LogSource kSource{"Os/Posix/PosixOSLocker"};
// The kernel wakes nobody after a limited time, so a lock that is taken is tried again and again.
constexpr std::chrono::milliseconds kPoll{20};

LockFile openFile(const std::filesystem::path& folder) {
  try {
    return LockFile(folder);
  } catch (const std::runtime_error& error) {
    throw LockFault(error.what());
  }
}

}  // namespace

const utils::LogSource OSLocker::kLog = kSource;

OSLockerPosix::OSLockerPosix(const std::filesystem::path& folder, Clock& clock)
    : m_clock(clock), m_file(openFile(folder)) {}

OSLockerPosix::~OSLockerPosix() {
  OSLockerPosix::UnLock();
}

// Without one there is no locker.
bool OSLockerPosix::hasSemaphore() const {
  return true;
}

OSLocker::WaitResult OSLockerPosix::waitForSemaphore(std::uint32_t milliseconds) {
  constexpr const char* kFunction = "os::OSLockerPosix::waitForSemaphore";
  const Clock::TimePoint deadline = m_clock.now() + std::chrono::milliseconds(milliseconds);
  bool hasWaited = false;
  try {
    while (!m_file.tryLock(m_clock.now())) {
      try {
        noteWait(m_file.readHolder());
        if (!std::exchange(hasWaited, true)) {
          utils::logDebug(kSource, kFunction, "Waiting for the flash lock, which is held by %s",
                          describeWait().c_str());
        }
      } catch (const std::bad_alloc&) {
        noteWait(std::nullopt);  // that somebody holds it needs no memory
      }
      const Clock::Duration left = deadline - m_clock.now();
      if (left <= Clock::Duration::zero() || isGivenUp()) {
        return WaitResult::TimedOut;
      }
      m_clock.sleepFor(std::min<Clock::Duration>(left, kPoll));
    }
  } catch (const std::runtime_error& error) {
    utils::logError(kSource, kFunction, "The flash lock cannot be taken: %s", error.what());
    noteFailure(error.what());
    return WaitResult::Failed;
  }
  return WaitResult::Signalled;
}

std::optional<OSLocker::SystemError> OSLockerPosix::releaseSemaphore() {
  const int error = m_file.unlock();
  if (error == 0) {
    return std::nullopt;
  }
  return SystemError{error, std::generic_category().message(error)};
}

std::unique_ptr<OSLocker> createOSLocker() {
  return std::make_unique<OSLockerPosix>();
}

}  // namespace os
