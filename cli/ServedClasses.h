// The CIM classes that the loaded modules serve, and instances by their paths.

#ifndef ORVEX_CLI_SERVEDCLASSES_H_
#define ORVEX_CLI_SERVEDCLASSES_H_

#include <map>
#include <string>
#include <vector>

#include "core/CimBroker.h"
#include "core/CimPath.h"

namespace cli {

// The names of the agents that serve each class, in the order in which the broker asks them. The
// classes are in alphabetical order.
using ServingAgents = std::map<std::string, std::vector<std::string>>;

[[nodiscard]] ServingAgents getServingAgents(const core::CimBroker& broker);

// Throws Fault, which lists the classes that are served, when nobody serves this one.
void demandServed(const core::CimBroker& broker, const std::string& className);

// Reads an object path that the user gave. Throws Fault (usage) for a malformed one.
[[nodiscard]] core::CimPath parseObjectPath(const std::string& text);

// Returns the instance at the path. The caller holds the broker's request. Throws Fault when there
// is none, and as demandServed.
[[nodiscard]] core::CimInstance& demandInstance(core::CimBroker& broker, const core::CimPath& path);

}  // namespace cli

#endif  // ORVEX_CLI_SERVEDCLASSES_H_
