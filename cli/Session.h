// How a command comes to its instances: in this process, which then hosts the agents, or in a host.

#ifndef ORVEX_CLI_SESSION_H_
#define ORVEX_CLI_SESSION_H_

#include <memory>
#include <string>

#include "cli/Context.h"
#include "client/Connection.h"

namespace cli {

// Throws Fault (usage) for options that have a meaning with a host alone and come without one, or
// the other way round.
void demandConsistent(const GlobalOptions& options);

// Puts the options into force for this process: adapters directory, configuration file, time limit
// of the flash lock, log level.
// To be called before anything logs. Throws Fault (usage) for a configuration file that cannot be
// opened. Windows opens it only, and takes the settings from the registry.
void applyOptions(const GlobalOptions& options);

// Returns what a person calls the place of the settings that the options put into force: the path
// of the configuration file, on Windows the registry key.
[[nodiscard]] std::string getConfigurationPlace(const GlobalOptions& options);

// Applies the options and connects to the host that they name (see openHost). Without one, loads
// the modules, whose agents then serve their classes in the broker of this process. Throws as
// applyOptions, openHost and host::loadModules.
[[nodiscard]] std::unique_ptr<client::Connection> openConnection(const GlobalOptions& options);

}  // namespace cli

#endif  // ORVEX_CLI_SESSION_H_
