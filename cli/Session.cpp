#include "cli/Session.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

#include "Os/Environment.h"
#include "Os/QuorvelConfig.h"
#include "Os/Texts.h"
#include "cli/BrokerConnection.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"

namespace cli {
namespace {

void demandReadable(const std::string& path) {
  const std::filesystem::path file = os::toPath(path);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw Fault("--config: '" + path + "' is a directory; name the configuration file in it",
                ExitStatus::Usage);
  }
  if (!std::ifstream(file).is_open()) {
    throw Fault("--config: '" + path + "' cannot be read; check the path and its permissions",
                ExitStatus::Usage);
  }
}

// Never destroyed: jobs and the modules' objects may ask it until the process has ended, and in
// which order programs and modules lose their objects differs by platform.
void useConfiguration(const std::string& path) {
  static auto& config = *new std::unique_ptr<utils::QuorvelConfig>;
  config = std::make_unique<utils::QuorvelConfig>(path);
}

}  // namespace

void applyOptions(const GlobalOptions& options) {
  if (!options.logLevel.empty()) {
    os::setEnvironment("ZOLAN_Quorvel_LOG_LEVEL", options.logLevel);
  }
  if (!options.adapters.empty()) {
    os::setEnvironment("ORVEX_ADAPTERS", options.adapters);
  }
  if (!options.config.empty()) {
    demandReadable(options.config);
    useConfiguration(options.config);
  }
}

std::string getConfigurationPlace(const GlobalOptions& options) {
  return utils::QuorvelConfig::placeOf(options.config.empty() ? utils::QuorvelConfig::kDefaultPath
                                                              : options.config);
}

std::unique_ptr<Connection> openConnection(const GlobalOptions& options) {
  applyOptions(options);
  host::loadModules(host::getModuleDirectory());
  return std::make_unique<BrokerConnection>(core::GetCimBroker());
}

}  // namespace cli
