#include "host/ModuleLoader.h"

#include <filesystem>

#include "Os/Environment.h"
#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "core/CimBroker.h"

namespace host {
namespace {

constexpr const char* kModules[] = {"OrvexSoftwareInventoryAgent", "OrvexSoftwareUpdateAgent"};

}  // namespace

std::string getModuleDirectory() {
  const std::filesystem::path program(os::getProgramPath());
  return (program.parent_path() / os::modulesFromPrograms()).lexically_normal().string();
}

void loadModule(const std::string& path) {
  const std::size_t agentsBefore = core::GetCimBroker().getAgents().size();
  os::loadSharedLibrary(path);
  if (core::GetCimBroker().getAgents().size() == agentsBefore) {
    throw utils::Exception(
        "The module '%s' was loaded but registered no agent. The system log tells why.",
        path.c_str());
  }
}

void loadModules(const std::string& directory) {
  for (const char* name : kModules) {
    const std::string file = std::string(name) + os::sharedLibrarySuffix();
    loadModule((std::filesystem::path(directory) / file).make_preferred().string());
  }
}

}  // namespace host
