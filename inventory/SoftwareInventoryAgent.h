// The inventory agent: serves the machine's Ethernet adapters, their ports and their software.

#ifndef ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_
#define ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_

#include "core/CimAgent.h"
#include "inventory/FirmwareFiles.h"

namespace inventory {

class SoftwareInventoryAgent : public core::CimAgent {
 public:
  SoftwareInventoryAgent();
  ~SoftwareInventoryAgent() override;

  void declareClasses(core::CimSchema& schema) const override;

 private:
  FirmwareFiles m_files;
};

// Adds the one agent of the process to the broker. For the module's load hook.
void addSoftwareInventoryAgent();

}  // namespace inventory

#endif  // ORVEX_INVENTORY_SOFTWAREINVENTORYAGENT_H_
