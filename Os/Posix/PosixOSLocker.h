// The flash lock on the lock of a file.

#ifndef ORVEX_OS_POSIX_POSIXOSLOCKER_H_
#define ORVEX_OS_POSIX_POSIXOSLOCKER_H_

#include <cstdint>
#include <filesystem>
#include <optional>

#include "Os/OSLocker.h"
#include "Os/Posix/LockFile.h"
#include "platform/Clock.h"

namespace os {

class ORVEX_CORE_API OSLockerPosix : public OSLocker {
 public:
  // Where the programs of this maker have their lock.
  static constexpr const char* kFolder = "/run/lock";

  // Opens the lock's file in `folder`, or makes it; waits by `clock`. Throws LockFault.
  explicit OSLockerPosix(const std::filesystem::path& folder = kFolder,
                         platform::Clock& clock = platform::steadyClock());
  ~OSLockerPosix() override;

 protected:
  [[nodiscard]] bool hasSemaphore() const override;
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t milliseconds) override;
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override;

 private:
  platform::Clock& m_clock;
  LockFile m_file;
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_POSIXOSLOCKER_H_
