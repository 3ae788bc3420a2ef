#include "cli/Session.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

#include "Os/Environment.h"
#include "Os/QuorvelConfig.h"
#include "cli/Duration.h"
#include "cli/OpenHost.h"
#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "core/CimBroker.h"
#include "host/ModuleLoader.h"
#include "midapi/MidApi.h"
#include "platform/Texts.h"

namespace cli {
namespace {

// Where an option has a meaning.
struct OptionPlace {
  std::string GlobalOptions::*value;
  const char* option;
  bool isForHost;
  const char* reason;
};

constexpr OptionPlace kOptionPlaces[] = {
    {&GlobalOptions::adapters, "--adapters", false,
     " does not go with --host: the host has adapters of its own"},
    {&GlobalOptions::config, "--config", false,
     " does not go with --host: the host has a configuration of its own"},
    {&GlobalOptions::lockTimeout, "--lock-timeout", false,
     " does not go with --host: the host has a configuration of its own (Timeout)"},
    {&GlobalOptions::passwordFile, "--password-file", true, " goes with --host alone"},
    {&GlobalOptions::caFile, "--cacert", true, " goes with --host alone"},
    {&GlobalOptions::nameSpace, "--namespace", true, " goes with --host alone"},
};

void demandReadable(const std::string& path) {
  const std::filesystem::path file = platform::toPath(path);
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw client::Fault(
        "--config: '" + path + "' is a directory; name the configuration file in it",
        client::Fault::Kind::Usage);
  }
  if (!std::ifstream(file).is_open()) {
    throw client::Fault(
        "--config: '" + path + "' cannot be read; check the path and its permissions",
        client::Fault::Kind::Usage);
  }
}

// The configuration, but for what the command line says of the flash lock.
class SessionConfig final : public utils::QuorvelConfig {
 public:
  SessionConfig(const std::string& path, std::optional<std::uint32_t> timeout)
      : QuorvelConfig(path), m_timeout(timeout) {}

  std::uint32_t getTimeout() override {
    return m_timeout ? *m_timeout : QuorvelConfig::getTimeout();
  }

 private:
  const std::optional<std::uint32_t> m_timeout;
};

// Never destroyed: jobs and the modules' objects may ask it until the process has ended, and in
// which order programs and modules lose their objects differs by platform.
void useConfiguration(const GlobalOptions& options) {
  static auto& config = *new std::unique_ptr<utils::QuorvelConfig>;
  config = std::make_unique<SessionConfig>(
      options.config.empty() ? utils::QuorvelConfig::kDefaultPath : options.config,
      parseMilliseconds(options.lockTimeout));
}

}  // namespace

void demandConsistent(const GlobalOptions& options) {
  const bool hasHost = !options.host.empty();
  for (const OptionPlace& place : kOptionPlaces) {
    if (!(options.*place.value).empty() && place.isForHost != hasHost) {
      throw client::Fault(std::string(place.option) + place.reason, client::Fault::Kind::Usage);
    }
  }
}

void applyOptions(const GlobalOptions& options) {
  ma::useSettings(utils::QuorvelConfig::currentFlashSettings);
  if (!options.logLevel.empty()) {
    os::setEnvironment("ZOLAN_Quorvel_LOG_LEVEL", options.logLevel);
  }
  if (!options.adapters.empty()) {
    os::setEnvironment("ORVEX_ADAPTERS", options.adapters);
  }
  if (!options.config.empty()) {
    demandReadable(options.config);
  }
  if (!options.config.empty() || !options.lockTimeout.empty()) {
    useConfiguration(options);
  }
}

std::string getConfigurationPlace(const GlobalOptions& options) {
  return utils::QuorvelConfig::placeOf(options.config.empty() ? utils::QuorvelConfig::kDefaultPath
                                                              : options.config);
}

std::unique_ptr<client::Connection> openConnection(const GlobalOptions& options) {
  demandConsistent(options);
  applyOptions(options);
  if (!options.host.empty()) {
    return openHost(options);
  }
  host::loadModules(host::getModuleDirectory());
  return std::make_unique<client::BrokerConnection>(core::GetCimBroker());
}

}  // namespace cli
