#include "inventory/SoftwareInventoryAgent.h"

#include "core/CimBroker.h"
#include "inventory/Orvex_ElementSoftwareIdentity.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "inventory/Orvex_EthernetPortRegisteredProfile.h"
#include "inventory/Orvex_PortControllerClass.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"
#include "inventory/Orvex_SoftwareIdentityResourceClass.h"

namespace core {

SoftwareInventoryAgent::SoftwareInventoryAgent() : CimAgent("Software Inventory") {
  getClasses().add(new Orvex_EthernetPortClass);
  getClasses().add(new Orvex_PortControllerClass);
  getClasses().add(new Orvex_EthernetPortRegisteredProfileClass);
  getClasses().add(new Orvex_SoftwareIdentityClass(m_files));
  getClasses().add(new Orvex_SoftwareIdentityResourceClass(m_files));
  getClasses().add(new Orvex_ElementSoftwareIdentityClass);
}

SoftwareInventoryAgent::~SoftwareInventoryAgent() = default;

void addSoftwareInventoryAgent() {
  CimBroker& broker = GetCimBroker();
  static SoftwareInventoryAgent agent;
  broker.addAgent(&agent);
}

}  // namespace core
