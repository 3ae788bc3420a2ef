#include "inventory/SoftwareInventoryAgent.h"

#include "core/CimBroker.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "inventory/Orvex_EthernetPortRegisteredProfile.h"
#include "inventory/Orvex_PortControllerClass.h"

namespace core {

SoftwareInventoryAgent::SoftwareInventoryAgent() : CimAgent("Software Inventory") {
  getClasses().add(new Orvex_EthernetPortClass);
  getClasses().add(new Orvex_PortControllerClass);
  getClasses().add(new Orvex_EthernetPortRegisteredProfileClass);
}

SoftwareInventoryAgent::~SoftwareInventoryAgent() = default;

void addSoftwareInventoryAgent() {
  CimBroker& broker = GetCimBroker();
  static SoftwareInventoryAgent agent;
  broker.addAgent(&agent);
}

}  // namespace core
