// The machine's flash lock, for a command that does something with an adapter itself.

#ifndef ORVEX_CLI_FLASHLOCK_H_
#define ORVEX_CLI_FLASHLOCK_H_

#include <memory>
#include <string>

#include "Os/OSLocker.h"

namespace cli {

// Has the lock while it lives. One at a time, and none in a process that has loaded the agents,
// which have a locker of their own.
class FlashLock {
 public:
  // Waits for the lock as an update does. Throws client::Fault, which says that `what` was refused,
  // who has the lock or why it cannot be had, and what to do.
  explicit FlashLock(const std::string& what,
                     std::unique_ptr<os::OSLocker> locker = os::createOSLockerOrSubstitute());
  FlashLock(const FlashLock&) = delete;
  FlashLock& operator=(const FlashLock&) = delete;
  ~FlashLock();

 private:
  const std::unique_ptr<os::OSLocker> m_locker;
};

}  // namespace cli

#endif  // ORVEX_CLI_FLASHLOCK_H_
