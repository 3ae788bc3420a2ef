// The process as a host of the agents: its settings, then its modules.

#ifndef ORVEX_CLI_SESSION_H_
#define ORVEX_CLI_SESSION_H_

#include <string>

#include "cli/Context.h"
#include "core/CimBroker.h"

namespace cli {

// Puts the options into force for this process: adapters directory, configuration file, log level.
// To be called before anything logs. Throws Fault (usage) for a configuration file that cannot be
// opened. Windows opens it only, and takes the settings from the registry.
void applyOptions(const GlobalOptions& options);

// Returns what a person calls the place of the settings that the options put into force: the path
// of the configuration file, on Windows the registry key.
[[nodiscard]] std::string getConfigurationPlace(const GlobalOptions& options);

// Applies the options and loads the modules, whose agents then serve their classes in the broker
// that is returned. Throws as applyOptions and host::loadModules.
[[nodiscard]] core::CimBroker& openBroker(const GlobalOptions& options);

}  // namespace cli

#endif  // ORVEX_CLI_SESSION_H_
