// A small host: update_probe TASK DIRECTORY URI. Of the project's libraries it is linked with
// OrvexCimCore alone. Loads both agents from the directory and installs the image in the first
// port. Prints what happens.
//
// unload          waits for the job, then unloads the agents, the last one first
// unload-running  unloads them while the job runs
// exit-running    ends the process while the job runs
// no-lock         finds the flash lock's name taken by something else, and waits for the job

#include <cstdio>
#include <cstdlib>
#include <string>
#include <windows.h>

#include "tests/modules/Windows/SmallHost.h"
#include "tests/support/WaitUntil.h"

namespace {

constexpr const char* kInventory = "OrvexSoftwareInventoryAgent";
constexpr const char* kAgent = "OrvexSoftwareUpdateAgent";
constexpr const char* kLibraries[] = {"OrvexCimCore", "OrvexMidApi", kInventory, kAgent};

void printLibraries(const char* moment) {
  std::printf("%s:", moment);
  for (const char* name : kLibraries) {
    if (GetModuleHandleA(name) != nullptr) {
      std::printf(" %s", name);
    }
  }
  std::puts("");
}

HMODULE load(const std::string& directory, const char* name) {
  const std::string path = directory + "\\" + name + ".dll";
  const HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == nullptr) {
    std::printf("%s is not loaded, error %lu\n", path.c_str(), GetLastError());
    std::exit(EXIT_FAILURE);
  }
  return module;
}

// Waits until the library is gone: the thread of a job may hold it for a while.
void unload(HMODULE module, const char* name) {
  if (FreeLibrary(module) == FALSE) {
    std::printf("%s cannot be unloaded, error %lu\n", name, GetLastError());
  }
  static_cast<void>(test::waitUntil([name] { return GetModuleHandleA(name) == nullptr; }));
}

// Starts the update. Returns the object path of its job.
std::string install(const char* uri) {
  const test::Installation result = test::install(uri);
  std::printf("InstallFromURI: %u\n", result.answer);
  if (!result.job) {
    std::exit(EXIT_FAILURE);
  }
  return *result.job;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return EXIT_FAILURE;
  }
  const std::string task = argv[1];
  if (task == "no-lock") {
    CreateMutexA(nullptr, FALSE, "Global\\RavlApplySemaphore");
  }
  printLibraries("at the start");
  const HMODULE inventory = load(argv[2], kInventory);
  const HMODULE agent = load(argv[2], kAgent);
  printLibraries("with the agents");
  const std::string job = install(argv[3]);
  if (task == "unload" || task == "no-lock") {
    std::puts(test::awaitEnd(job).c_str());
  }
  if (task == "unload" || task == "unload-running") {
    unload(agent, kAgent);
    unload(inventory, kInventory);
    printLibraries("at the end");
  }
  return EXIT_SUCCESS;
}
