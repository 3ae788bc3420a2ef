// records_probe TASK DIRECTORY: a host that is linked with no library of the project loads the
// agents from the directory, and prints what reaches the event log: "event: " and the line, or
// "event within the loader: " and the line. Then all libraries have to go.
//
// initialisers  the update agent is given no semaphore for the flash lock
// entry         the update agent's entry is given no mutexes, so that it is not loaded
// end           no mutex can be closed when the agents are unloaded, and with them all libraries

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <windows.h>

#include "tests/support/WaitUntil.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

constexpr const char* kCore = "OrvexCimCore.dll";

std::atomic<int> s_events{0};
std::atomic<int> s_mutexes{0};

// Where the block of the process has the lock of its loader.
constexpr std::size_t kLoaderLock = 0x110;

bool isInLoader() {
  using GetBlock = const std::byte*(NTAPI*)();
  const auto getBlock = reinterpret_cast<GetBlock>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetCurrentPeb")));
  const auto* const lock =
      *reinterpret_cast<const CRITICAL_SECTION* const*>(getBlock() + kLoaderLock);
  return reinterpret_cast<ULONG_PTR>(lock->OwningThread) == GetCurrentThreadId();
}

BOOL WINAPI report(HANDLE /*source*/, WORD /*type*/, WORD /*category*/, DWORD /*event*/,
                   PSID /*user*/, WORD /*count*/, DWORD /*dataSize*/, const char** strings,
                   void* /*data*/) {
  std::printf("%s: %s", isInLoader() ? "event within the loader" : "event", strings[0]);
  ++s_events;
  return TRUE;
}

// The first one is that of the flash lock, which an initialiser makes.
HANDLE WINAPI refuseFurtherMutexes(SECURITY_ATTRIBUTES* attributes, BOOL isOwned,
                                   const char* name) {
  if (s_mutexes++ == 0) {
    return CreateMutexA(attributes, isOwned, name);
  }
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return nullptr;
}

HANDLE WINAPI refuseSemaphore(SECURITY_ATTRIBUTES* /*attributes*/, LONG /*count*/, LONG /*maximum*/,
                              const char* /*name*/) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return nullptr;
}

BOOL WINAPI closeAndComplain(HANDLE handle) {
  CloseHandle(handle);
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
}

// For the life of the library, which ends before that of the process.
template <class Function>
void patch(const char* name, Function* replacement) {
  static_cast<void>(new test::ImportPatch(kCore, name, replacement));
}

HMODULE load(const std::string& directory, const char* name) {
  return LoadLibraryExA((directory + "\\" + name).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  const std::string task = argv[1];
  const HMODULE inventory = load(argv[2], "OrvexSoftwareInventoryAgent.dll");
  if (inventory == nullptr) {
    std::printf("the inventory agent is not loaded, error %lu\n", GetLastError());
    return EXIT_FAILURE;
  }
  patch("ReportEventA", &report);
  if (task == "initialisers") {
    patch("CreateSemaphoreA", &refuseSemaphore);
  } else if (task == "entry") {
    patch("CreateMutexA", &refuseFurtherMutexes);
  }
  const HMODULE agent = load(argv[2], "OrvexSoftwareUpdateAgent.dll");
  std::printf("the update agent is %s\n", agent == nullptr ? "not loaded" : "loaded");
  if (task == "end") {
    patch("CloseHandle", &closeAndComplain);
  } else if (!test::waitUntil([] { return s_events != 0; })) {
    return EXIT_FAILURE;
  }
  if (agent != nullptr) {
    FreeLibrary(agent);
  }
  FreeLibrary(inventory);
  if (!test::waitUntil([] { return GetModuleHandleA(kCore) == nullptr; })) {
    std::printf("%s stays\n", kCore);
  }
  return s_events != 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
