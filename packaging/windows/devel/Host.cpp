// A host process in a few lines: loads the agents and shows what they serve.
//
// usage: Host BIN-DIRECTORY, the whole path of the folder that holds the agents

#include <cstdio>
#include <string>
#include <windows.h>

#include "core/CimBroker.h"

namespace {

// What the module needs stands beside it. The path is absolute and has backslashes.
bool load(const std::string& directory, const char* module) {
  const std::string path = directory + "\\" + module;
  if (LoadLibraryExA(path.c_str(), nullptr,
                     LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS) !=
      nullptr) {
    return true;
  }
  std::printf("%s cannot be loaded: error %lu\n", path.c_str(), GetLastError());
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::puts("usage: Host BIN-DIRECTORY");
    return 2;
  }
  if (!load(argv[1], "OrvexSoftwareInventoryAgent.dll") ||
      !load(argv[1], "OrvexSoftwareUpdateAgent.dll")) {
    return 1;
  }
  // What the broker hands out is valid as long as the request is held.
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  for (const char* name : {"Orvex_EthernetPort", "Orvex_SoftwareInstallationService"}) {
    for (core::CimInstance* instance : broker.getInstances(name)) {
      std::puts(instance->getPath().c_str());
    }
  }
}
