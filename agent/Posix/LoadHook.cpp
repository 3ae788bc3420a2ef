#include "Os/LoadHook.h"

#include "Os/OSLocker.h"
#include "agent/MainDllEntry.h"

namespace {

constexpr utils::LogSource kLog{"MainDllEntry"};

// The locker comes first, as it does where the loader runs a library's initialisers before its
// entry point: the agent is destroyed before it.
void attach() {
  static const std::unique_ptr<os::OSLocker> locker = os::createOSLocker();
  DllMain(nullptr, agent::kProcessAttach, nullptr);
}

__attribute__((constructor)) void onLoad() {
  os::runLoadHook(kLog, os::kNotRegistered, attach);
}

}  // namespace
