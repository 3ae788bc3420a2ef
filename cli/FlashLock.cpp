#include "cli/FlashLock.h"

#include <cstdint>
#include <utility>

#include "client/Fault.h"

namespace cli {
namespace {

std::string behindColon(const std::string& text) {
  return text.empty() ? text : ": " + text;
}

}  // namespace

FlashLock::FlashLock(const std::string& what, std::unique_ptr<os::OSLocker> locker)
    : m_locker(std::move(locker)) {
  const std::int32_t result = m_locker->Lock();
  if (result == os::OSLocker::kLocked) {
    return;
  }
  if (result == os::OSLocker::kTimeout) {
    throw client::Fault(what + " refused: the flash was held by " +
                        os::OSLocker::describeTimeout() +
                        "\n  next: try again when that program has ended, or wait longer (Timeout "
                        "in the configuration, or --lock-timeout)");
  }
  throw client::Fault(what + " refused: the flash lock cannot be had" +
                      behindColon(os::OSLocker::describeFailure()) +
                      "\n  next: mend what keeps this user from the flash lock, then try again");
}

FlashLock::~FlashLock() {
  m_locker->UnLock();
}

}  // namespace cli
