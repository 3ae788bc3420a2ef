// Loads the modules whose agents a host serves. For the start of a process, on one thread.

#ifndef ORVEX_HOST_MODULELOADER_H_
#define ORVEX_HOST_MODULELOADER_H_

#include <filesystem>

namespace host {

// Returns the directory of the modules that belong to the running program: beside its file on
// Windows, ../lib/quorvel from there elsewhere.
[[nodiscard]] std::filesystem::path getModuleDirectory();

// Loads one module for the life of the process; loading it registers its agent with the broker. The
// machine has its name then (see MachineName.h).
// Throws utils::Exception when it cannot be loaded or has registered no agent.
void loadModule(const std::filesystem::path& path);

// Loads the inventory agent and the software update agent from a directory, in this order. Throws
// as loadModule.
void loadModules(const std::filesystem::path& directory);

}  // namespace host

#endif  // ORVEX_HOST_MODULELOADER_H_
