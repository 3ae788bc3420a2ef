#include "host/ModuleLoader.h"

#include <string>
#include <system_error>

#include "Os/Environment.h"
#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "core/CimBroker.h"
#include "platform/Paths.h"
#include "platform/Texts.h"

namespace host {
namespace {

constexpr const char* kModules[] = {"OrvexSoftwareInventoryAgent", "OrvexSoftwareUpdateAgent"};

}  // namespace

std::filesystem::path getModuleDirectory() {
  std::error_code error;
  return platform::makeNormal(os::getProgramPath().parent_path() / os::modulesFromPrograms(),
                              error);
}

void loadModule(const std::filesystem::path& path) {
  const std::size_t agentsBefore = core::GetCimBroker().getAgents().size();
  os::loadSharedLibrary(path);
  if (core::GetCimBroker().getAgents().size() == agentsBefore) {
    throw utils::Exception(
        "The module '%s' was loaded but registered no agent. The system log tells why.",
        platform::toShownText(path).c_str());
  }
}

void loadModules(const std::filesystem::path& directory) {
  for (const char* name : kModules) {
    const std::string file = std::string(name) + os::sharedLibrarySuffix();
    loadModule((directory / file).make_preferred());
  }
}

}  // namespace host
