#include "Os/LoadHook.h"

#include <memory>
#include <windows.h>

#include "Os/OSLocker.h"
#include "Os/Windows/LateRecords.h"
#include "Os/Windows/WindowsRegistry.h"
#include "agent/TargetInProgress.h"

namespace {

constexpr utils::LogSource kLog{"MainDllEntry"};

// What the module has from its first to its last moment: it is made before the objects below and
// the agent, and so destroyed after them, when no job runs any more.
struct Life {
  Life() = default;
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;
  ~Life() { agent::dropTargetInProgress(); }

  const os::LateRecordWriter recordWriter;
};
[[maybe_unused]] const Life s_life;

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
     os::runLoadHook(kLog, "The flash lock could not be made", prepareFlashLock), true);

}  // namespace

// The runtime's entry: runs the module's initialisers and DllMain, or what has to run at its end.
extern "C" BOOL WINAPI DllMainCRTStartup(HANDLE module, DWORD reason, LPVOID reserved);

namespace {

// What the loader loads the module with.
HANDLE s_module = nullptr;
LPVOID s_reserved = nullptr;
BOOL s_isLoaded = FALSE;

void load() {
  s_isLoaded = DllMainCRTStartup(s_module, DLL_PROCESS_ATTACH, s_reserved);
}

}  // namespace

// What the loader calls. DllMain throws where the agent cannot be built, and an exception that
// reaches the loader may end the host: here it makes a module that cannot be loaded, and the reason
// is logged.
extern "C" BOOL WINAPI moduleEntry(HANDLE module, DWORD reason, LPVOID reserved) {
  if (reason != DLL_PROCESS_ATTACH) {
    return DllMainCRTStartup(module, reason, reserved);
  }
  s_module = module;
  s_reserved = reserved;
  os::runLoadHook(kLog, os::kNotRegistered, load);
  if (s_isLoaded == FALSE) {
    // What has been made goes. The runtime knows it when the loader calls for that, too.
    static_cast<void>(DllMainCRTStartup(module, DLL_PROCESS_DETACH, nullptr));
  }
  return s_isLoaded;
}
