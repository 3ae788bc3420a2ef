#include "inventory/SoftwareInventoryAgent.h"

#include <cstdint>
#include <string>

#include "core/CimBroker.h"
#include "core/DeclareClass.h"
#include "inventory/Orvex_ElementSoftwareIdentity.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "inventory/Orvex_EthernetPortRegisteredProfile.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_PortControllerClass.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"
#include "inventory/Orvex_SoftwareIdentityResourceClass.h"

namespace core {
namespace {

// What stands in for instances where only their properties count.

class AnyPort : public Orvex_EthernetPort {
 public:
  [[nodiscard]] std::string getIdentity() const override { return {}; }
};

class AnyController : public Orvex_PortController {
 public:
  [[nodiscard]] bool ownsPort(const Orvex_EthernetPort& /*port*/) const override { return false; }
};

class AnySoftware : public Orvex_SoftwareIdentity {
 public:
  [[nodiscard]] std::string getIdentity() const override { return {}; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return 0; }
};

class AnyResource : public Orvex_SoftwareIdentityResource {
 public:
  [[nodiscard]] std::string getFirmwareFileID() const override { return {}; }
};

class AnyElementSoftware : public Orvex_ElementSoftwareIdentity {
 public:
  AnyElementSoftware() : Orvex_ElementSoftwareIdentity(nullptr, nullptr, {}) {}
};

}  // namespace

SoftwareInventoryAgent::SoftwareInventoryAgent() : CimAgent("Software Inventory") {
  getClasses().add(new Orvex_EthernetPortClass);
  getClasses().add(new Orvex_PortControllerClass);
  getClasses().add(new Orvex_EthernetPortRegisteredProfileClass);
  getClasses().add(new Orvex_SoftwareIdentityClass(m_files));
  getClasses().add(new Orvex_SoftwareIdentityResourceClass(m_files));
  getClasses().add(new Orvex_ElementSoftwareIdentityClass);
}

SoftwareInventoryAgent::~SoftwareInventoryAgent() = default;

void SoftwareInventoryAgent::declareClasses(CimSchema& schema) const {
  declareClass<Orvex_EthernetPort, AnyPort>(schema);
  declareClass<Orvex_PortController, AnyController>(schema);
  declareClass<Orvex_SoftwareIdentity, AnySoftware>(schema);
  declareClass<Orvex_SoftwareIdentityResource, AnyResource>(schema);
  declareClass<Orvex_ElementSoftwareIdentity, AnyElementSoftware>(schema);
  declarePlainClasses<Orvex_EthernetPortRegisteredProfile>(schema);
}

void addSoftwareInventoryAgent() {
  CimBroker& broker = GetCimBroker();
  static SoftwareInventoryAgent agent;
  broker.addAgent(&agent);
}

}  // namespace core
