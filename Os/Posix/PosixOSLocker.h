// The flash lock on a System V semaphore.

#ifndef ORVEX_OS_POSIX_POSIXOSLOCKER_H_
#define ORVEX_OS_POSIX_POSIXOSLOCKER_H_

#include <cstdint>
#include <optional>

#include "Os/OSLocker.h"
#include "platform/Clock.h"

namespace os {

class ORVEX_CORE_API OSLockerPosix : public OSLocker {
 public:
  // The key that all programs of this maker share ("RAVL").
  static constexpr std::int32_t kSharedKey = 0x5241564C;

  // Opens the semaphore under `key`, or creates it with count 1; waits by `clock` for another that
  // is creating it. Throws utils::Exception "Could not create synchronisation sempahore".
  explicit OSLockerPosix(std::int32_t key = kSharedKey,
                         platform::Clock& clock = platform::steadyClock());
  ~OSLockerPosix() override;

 protected:
  [[nodiscard]] bool hasSemaphore() const override;
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t milliseconds) override;
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override;

 private:
  const std::int32_t m_key;
  platform::Clock& m_clock;
  int m_semaphore;  // the kernel's identifier, negative when there is none
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_POSIXOSLOCKER_H_
