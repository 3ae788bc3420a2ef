#include "Os/LoadHook.h"

#include <memory>

#include "Os/OSLocker.h"
#include "agent/MainDllEntry.h"

namespace {

constexpr utils::LogSource kLog{"MainDllEntry"};

void prepareFlashLock() {
  static const std::unique_ptr<os::OSLocker> locker = os::createOSLockerOrSubstitute();
}

void attach() {
  DllMain(nullptr, agent::kProcessAttach, nullptr);
}

// The locker comes first, as it does where the loader runs a library's initialisers before its
// entry point: the agent is destroyed before it. It is served without the lock, too: an update then
// ends with an error.
__attribute__((constructor)) void onLoad() {
  os::runLoadHook(kLog, "The flash lock could not be made", prepareFlashLock);
  os::runLoadHook(kLog, os::kNotRegistered, attach);
}

}  // namespace
