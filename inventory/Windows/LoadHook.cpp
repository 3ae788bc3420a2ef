#include "Os/LoadHook.h"

#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "inventory/SoftwareInventoryAgent.h"

namespace {

constexpr utils::LogSource kLog{"SoftwareInventoryAgent"};

// Made before the agent, and so destroyed after it.
[[maybe_unused]] const os::LateRecordWriter s_recordWriter;

}  // namespace

extern "C" BOOL WINAPI DllMain(HANDLE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    os::runLoadHook(kLog, os::kNotRegistered, inventory::addSoftwareInventoryAgent);
  }
  return TRUE;
}
