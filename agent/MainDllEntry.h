// The module's entry: what runs when a host loads it.

#ifndef ORVEX_AGENT_MAINDLLENTRY_H_
#define ORVEX_AGENT_MAINDLLENTRY_H_

#include <cstdint>

#include "agent/SoftwareUpdateAgent.h"

namespace agent {

// Why the loader calls the module (the numbers of the Windows loader).
enum LoadReason : std::uint32_t {
  kProcessDetach = 0,
  kProcessAttach = 1,
  kThreadAttach = 2,
  kThreadDetach = 3,
};

}  // namespace agent

// Returns the agent of the process, which the first call builds; it is destroyed when the module is
// unloaded. Throws what building it throws; the next call then tries again.
core::SoftwareUpdateAgent* RegisterSoftwareUpdateAgent();

// Adds the agent to the broker when the process attaches, and does nothing for any other reason.
// Always returns 1; throws what building the agent throws. On Windows the runtime calls it (its
// name and linkage are fixed there), and a module whose call throws is not loaded.
extern "C" std::int32_t DllMain(void* module, std::uint32_t reason, void* reserved);

#endif  // ORVEX_AGENT_MAINDLLENTRY_H_
