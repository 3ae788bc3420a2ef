#include "Os/OSLocker.h"

#include <exception>
#include <utility>

#include "Os/QuorvelConfig.h"
#include "Utils/ClockText.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"

namespace utils {

template <>
Singleton<os::OSLocker>*& Singleton<os::OSLocker>::slot() {
  static Singleton* current = nullptr;
  return current;
}

}  // namespace utils

namespace os {
namespace {

// So short that a string has room for it by itself, when there is no memory.
constexpr const char* kSomebody = "another program";

std::string describe(const std::optional<LockHolder>& holder) {
  return holder ? holder->toString(std::chrono::steady_clock::now()) : kSomebody;
}

// Stands in for a lock that could not be made.
class NoOSLocker final : public OSLocker {
 public:
  explicit NoOSLocker(std::string reason) : m_reason(std::move(reason)) {}

  [[nodiscard]] std::int32_t Lock() override {
    const std::int32_t result = OSLocker::Lock();
    noteFailure(m_reason);
    return result;
  }

 protected:
  [[nodiscard]] bool hasSemaphore() const override { return false; }
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t /*milliseconds*/) override {
    return WaitResult::Failed;
  }
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override { return std::nullopt; }

 private:
  const std::string m_reason;
};

}  // namespace

LockFault::LockFault(std::string reason)
    : Exception("Could not create synchronisation sempahore"), m_reason(std::move(reason)) {}

std::string LockHolder::toString(std::chrono::steady_clock::time_point now) const {
  const auto held = std::chrono::duration_cast<std::chrono::seconds>(now - since);
  return utils::format("%s, process %d, user %s, for %s", program.c_str(), process, user.c_str(),
                       utils::toClockText(held).c_str());
}

OSLocker::OSLocker() {
  utils::logDebug(kLog, "os::OSLocker::OSLocker", "Create new OSLocker");
}

OSLocker::~OSLocker() = default;

std::int32_t OSLocker::Lock() {
  constexpr const char* kFunction = "os::OSLocker::Lock";
  const utils::ScopedLock lock(m_lock);
  forgetFailure();
  if (!hasSemaphore()) {
    return kError;
  }
  if (m_isLocked) {
    utils::logDebug(kLog, kFunction, "Locker is in use at this moment");
    return kInUse;
  }
  WaitResult result = waitForSemaphore(utils::QuorvelConfig::getInstance()->getTimeout());
  if (result == WaitResult::Signalled && !noteHad()) {
    static_cast<void>(releaseSemaphore());
    result = WaitResult::TimedOut;
  }
  const std::string timeoutHolder = endWait(result);
  utils::logDebug(kLog, kFunction, "result = %d", static_cast<int>(result));
  switch (result) {
    case WaitResult::Signalled:
      m_isLocked = true;
      utils::logDebug(kLog, kFunction, "Semaphore is locked");
      return kLocked;
    case WaitResult::TimedOut:
      utils::logDebug(kLog, kFunction,
                      "Timeout occured when the Semaphore was locked. Other application uses "
                      "Fennelbrook SDK at this moment");
      if (isGivenUp()) {
        utils::logDebug(kLog, kFunction, "This process has given the flash lock up");
      } else {
        utils::logError(kLog, kFunction, "The flash lock is held by %s", timeoutHolder.c_str());
      }
      return kTimeout;
    case WaitResult::Failed:
      break;
  }
  utils::logDebug(kLog, kFunction, "Some error occured when the Semaphore was locked");
  return kError;
}

std::int32_t OSLocker::UnLock() {
  constexpr const char* kFunction = "os::OSLocker::UnLock";
  const utils::ScopedLock lock(m_lock);
  if (!hasSemaphore()) {
    return kError;
  }
  if (!m_isLocked) {
    return 0;
  }
  const std::optional<SystemError> error = releaseSemaphore();
  m_isLocked = false;
  if (!error) {
    return 0;
  }
  if (error->text.empty()) {
    utils::logDebug(kLog, kFunction, "'%s' Error [%d]", "ReleaseSemaphore", error->code);
  } else {
    utils::logDebug(kLog, kFunction, "'%s' Error [%d]: %s", "ReleaseSemaphore", error->code,
                    error->text.c_str());
  }
  return kError;
}

std::string OSLocker::describeAwaited() {
  auto* const locker = static_cast<OSLocker*>(slot());
  return locker != nullptr ? locker->describeWait() : std::string();
}

std::string OSLocker::describeTimeout() {
  auto* const locker = static_cast<OSLocker*>(slot());
  if (locker == nullptr) {
    return {};
  }
  const platform::Lock lock(locker->m_waitMutex);
  return locker->m_timeoutHolder;
}

std::string OSLocker::describeFailure() {
  auto* const locker = static_cast<OSLocker*>(slot());
  if (locker == nullptr) {
    return {};
  }
  const platform::Lock lock(locker->m_waitMutex);
  return locker->m_failure;
}

bool OSLocker::giveUp() {
  auto* const locker = static_cast<OSLocker*>(slot());
  if (locker == nullptr) {
    return false;
  }
  const platform::Lock lock(locker->m_waitMutex);
  locker->m_isGivenUp = !locker->m_wasHad;
  return locker->m_isGivenUp;
}

void OSLocker::noteWait(std::optional<LockHolder> holder) {
  const platform::Lock lock(m_waitMutex);
  m_isWaiting = true;
  m_holder = std::move(holder);
}

void OSLocker::noteFailure(std::string reason) {
  utils::platformLogSinks().writeStandardError(
      "OrvexQuorvel: no update can be made, since the flash lock cannot be had: " + reason + "\n");
  const platform::Lock lock(m_waitMutex);
  m_failure = std::move(reason);
}

void OSLocker::forgetFailure() {
  const platform::Lock lock(m_waitMutex);
  m_failure.clear();
}

bool OSLocker::noteHad() {
  const platform::Lock lock(m_waitMutex);
  m_wasHad = !m_isGivenUp;
  return m_wasHad;
}

bool OSLocker::isGivenUp() const {
  const platform::Lock lock(m_waitMutex);
  return m_isGivenUp;
}

void OSLocker::noteCandidates(std::string candidates) {
  const platform::Lock lock(m_waitMutex);
  m_candidates = std::move(candidates);
}

std::string OSLocker::endWait(WaitResult result) {
  const platform::Lock lock(m_waitMutex);
  std::string holder;
  m_timeoutHolder.clear();
  if (result == WaitResult::TimedOut) {
    // That it was in vain stands, whether or not there is memory to say for whom it was.
    try {
      holder = describe(m_holder);
      if (!m_candidates.empty()) {
        holder += std::string("; ") + utils::refusal::kSemaphoreIsOpenIn + m_candidates;
      }
      m_timeoutHolder = holder;
    } catch (const std::exception&) {
      holder = kSomebody;
      m_timeoutHolder = kSomebody;
    }
  }
  m_isWaiting = false;
  m_holder.reset();
  m_candidates.clear();
  return holder;
}

std::string OSLocker::describeWait() const {
  const platform::Lock lock(m_waitMutex);
  return m_isWaiting ? describe(m_holder) : std::string();
}

OSLocker::AutoOSLocker::AutoOSLocker() {
  utils::logDebug(kLog, "os::OSLocker::AutoOSLocker::AutoOSLocker", "autolocking semaphore");
  const std::int32_t result = OSLocker::getInstance()->Lock();
  if (result != kLocked) {
    throw utils::Exception("Locking access to the Fennelbrook returns %d", result);
  }
}

OSLocker::AutoOSLocker::~AutoOSLocker() {
  utils::logDebug(kLog, "os::OSLocker::AutoOSLocker::~AutoOSLocker", "autoreleasing semaphore");
  OSLocker::getInstance()->UnLock();
}

std::unique_ptr<OSLocker> createOSLockerOrSubstitute() {
  try {
    return createOSLocker();
  } catch (const LockFault& fault) {
    utils::logError(OSLocker::kLog, "os::createOSLockerOrSubstitute",
                    "The flash lock cannot be had, and no update can be made: %s",
                    fault.reason().c_str());
    return std::make_unique<NoOSLocker>(fault.reason());
  }
}

}  // namespace os
