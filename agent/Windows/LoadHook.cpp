#include "Os/LoadHook.h"

#include <memory>

#include "Os/OSLocker.h"
#include "Os/Windows/LateRecords.h"
#include "Os/Windows/WindowsRegistry.h"

namespace {

constexpr utils::LogSource kLog{"MainDllEntry"};

void prepareRegistry() {
  static_cast<void>(utils::WindowsRegistry::getInstance());
}

void prepareFlashLock() {
  static const std::unique_ptr<os::OSLocker> locker = os::createOSLockerOrSubstitute();
}

// What the agent finds when the loader, which runs the module's initialisers first, calls DllMain;
// destroyed after it. The agent is served without them, too: an update then ends with an error.
[[maybe_unused]] const bool s_isPrepared =
    (os::runLoadHook(kLog, "The access to the registry could not be made", prepareRegistry),
     os::runLoadHook(kLog, "The flash lock could not be made", prepareFlashLock),
     os::writeRecordsSoon(), true);

}  // namespace
