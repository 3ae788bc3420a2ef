// The flash lock on the named semaphore "Global\RavlApplySemaphore".

#ifndef ORVEX_OS_WINDOWS_WINDOWSOSLOCKER_H_
#define ORVEX_OS_WINDOWS_WINDOWSOSLOCKER_H_

#include "Os/OSLocker.h"
#include "platform/Windows/Handle.h"

namespace os {

class ORVEX_CORE_API OSLockerWindows : public OSLocker {
 public:
  // Creates or opens the semaphore with count 1, maximum 1 and access for everyone. Throws
  // LockFault.
  OSLockerWindows();
  ~OSLockerWindows() override;

 protected:
  [[nodiscard]] bool hasSemaphore() const override;
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t milliseconds) override;
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override;

 private:
  const platform::Handle m_semaphore;
};

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_WINDOWSOSLOCKER_H_
