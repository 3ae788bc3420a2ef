#include "agent/MainDllEntry.h"

#include "Utils/Log.h"
#include "core/CimBroker.h"

namespace {

constexpr utils::LogSource kLog{"MainDllEntry"};

}  // namespace

core::SoftwareUpdateAgent* RegisterSoftwareUpdateAgent() {
  static core::SoftwareUpdateAgent agent;
  utils::logDebug(kLog, "RegisterSoftwareUpdateAgent", "Registering Software Update agent...");
  return &agent;
}

std::int32_t DllMain(void* /*module*/, std::uint32_t reason, void* /*reserved*/) {
  utils::logDebug(kLog, "DllMain", "SoftwareUpdate Agent DllMain(%d)", static_cast<int>(reason));
  if (reason == agent::kProcessAttach) {
    // The broker first: it is then destroyed after the agent.
    core::CimBroker& broker = core::GetCimBroker();
    broker.addAgent(RegisterSoftwareUpdateAgent());
  }
  return 1;
}
