#include "Os/OSLocker.h"

#include "Os/QuorvelConfig.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"

namespace utils {

template <>
Singleton<os::OSLocker>*& Singleton<os::OSLocker>::slot() {
  static Singleton* current = nullptr;
  return current;
}

}  // namespace utils

namespace os {

OSLocker::OSLocker() {
  utils::logDebug(kLog, "os::OSLocker::OSLocker", "Create new OSLocker");
}

OSLocker::~OSLocker() = default;

std::int32_t OSLocker::Lock() {
  constexpr const char* kFunction = "os::OSLocker::Lock";
  const utils::ScopedLock lock(m_lock);
  if (!hasSemaphore()) {
    return kError;
  }
  if (m_isLocked) {
    utils::logDebug(kLog, kFunction, "Locker is in use at this moment");
    return kInUse;
  }
  const WaitResult result = waitForSemaphore(utils::QuorvelConfig::getInstance()->getTimeout());
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

}  // namespace os
