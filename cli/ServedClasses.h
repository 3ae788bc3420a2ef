// The CIM classes that the loaded modules serve.

#ifndef ORVEX_CLI_SERVEDCLASSES_H_
#define ORVEX_CLI_SERVEDCLASSES_H_

#include <string>
#include <vector>

#include "core/CimBroker.h"
#include "core/CimPath.h"

namespace cli {

// Returns the names in alphabetical order, each once.
[[nodiscard]] std::vector<std::string> getServedClasses(const core::CimBroker& broker);

// Throws Fault, which lists the classes that are served, when nobody serves this one.
void demandServed(const core::CimBroker& broker, const std::string& className);

// Returns the instance at the path. The caller holds the broker's request. Throws Fault when there
// is none, and as demandServed.
[[nodiscard]] core::CimInstance& demandInstance(core::CimBroker& broker, const core::CimPath& path);

}  // namespace cli

#endif  // ORVEX_CLI_SERVEDCLASSES_H_
