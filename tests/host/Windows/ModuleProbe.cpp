// Loads the modules of a directory: module_probe TASK DIRECTORY.
//
// load        prints the names of the agents
// load-twice  loads again, and prints the refusal before the names
// thread      starts a thread and waits for its end before it prints the names
// unload      enumerates, and unloads the modules, the last one first

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <windows.h>

#include "Os/OSLocker.h"
#include "Utils/Exception.h"
#include "core/CimAgent.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "platform/Windows/Handle.h"

namespace {

void printAgents() {
  for (const core::CimAgent* agent : core::GetCimBroker().getAgents()) {
    std::puts(agent->getName().c_str());
  }
}

void loadAgain(const std::filesystem::path& directory) {
  try {
    host::loadModules(directory);
  } catch (const utils::Exception& error) {
    std::puts(error.what());
  }
}

void enumerate() {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  for (const char* name : {"Orvex_SoftwareInstallationService", "Orvex_RegisteredProfile"}) {
    std::printf("%s: %d\n", name, static_cast<int>(broker.getInstances(name).count()));
  }
}

// Returns once the thread has ended.
void runThread() {
  const platform::Handle thread(CreateThread(
      nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, 0, nullptr));
  if (!thread.isOpen() || WaitForSingleObject(thread.get(), INFINITE) != WAIT_OBJECT_0) {
    std::printf("no thread, error %lu\n", GetLastError());
  }
}

void printLocker() {
  std::printf("%s\n", os::OSLocker::hasInstance() ? "a flash lock" : "no flash lock");
}

void unload(const char* name) {
  if (FreeLibrary(GetModuleHandleA(name)) == FALSE) {
    std::printf("%s is not to be had, error %lu\n", name, GetLastError());
  }
  std::printf("%s is %s\n", name, GetModuleHandleA(name) == nullptr ? "unloaded" : "still there");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  const std::string task = argv[1];
  const std::filesystem::path directory = std::filesystem::absolute(argv[2]);
  host::loadModules(directory);
  if (task == "unload") {
    enumerate();
    printLocker();
    unload("OrvexSoftwareUpdateAgent.dll");
    printLocker();
    unload("OrvexSoftwareInventoryAgent.dll");
    return EXIT_SUCCESS;
  }
  if (task == "load-twice") {
    loadAgain(directory);
  }
  if (task == "thread") {
    runThread();
  }
  printAgents();
  return EXIT_SUCCESS;
}
