#include "platform/Windows/InUse.h"

#include <windows.h>

#include "platform/Windows/Handle.h"
#include "platform/Windows/SystemPath.h"

namespace platform {

bool isInUse(SystemError error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

bool isOpenElsewhere(const std::filesystem::path& path) {
  const HANDLE file =
      CreateFileW(toSystemPath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                  FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return isInUse(GetLastError());
  }
  const Handle owner(file);
  return false;
}

SystemError retryWhile(const std::function<bool(SystemError)>& mayPass, Clock& clock,
                       const std::function<SystemError()>& attempt) {
  const Clock::TimePoint deadline = clock.now() + kInUsePatience;
  for (;;) {
    const SystemError error = attempt();
    if (error == ERROR_SUCCESS || !mayPass(error) || clock.now() >= deadline) {
      return error;
    }
    clock.sleepFor(kInUsePause);
  }
}

}  // namespace platform
