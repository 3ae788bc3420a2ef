#include "Os/LoadHook.h"

#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "inventory/SoftwareInventoryAgent.h"

namespace {

constexpr utils::LogSource kLog{"SoftwareInventoryAgent"};

}  // namespace

extern "C" BOOL WINAPI DllMain(HANDLE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    os::runLoadHook(kLog, os::kNotRegistered, inventory::addSoftwareInventoryAgent);
    os::writeRecordsSoon();
  }
  return TRUE;
}
