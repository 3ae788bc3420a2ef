#include "inventory/SoftwareInventoryAgent.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Os/QuorvelConfig.h"
#include "cim/SchemaTexts.h"
#include "core/CimBroker.h"
#include "core/ClassTexts.h"
#include "core/DeclareClass.h"
#include "inventory/FirmwareContent.h"
#include "inventory/InventoryTexts.h"
#include "inventory/Orvex_ComputerSystem.h"
#include "inventory/Orvex_ControlledBy.h"
#include "inventory/Orvex_ElementSoftwareIdentity.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_EthernetPortClass.h"
#include "inventory/Orvex_EthernetPortConformsToProfile.h"
#include "inventory/Orvex_EthernetPortRegisteredProfile.h"
#include "inventory/Orvex_HostedResource.h"
#include "inventory/Orvex_HostedService.h"
#include "inventory/Orvex_InstalledSoftwareIdentity.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_PortControllerClass.h"
#include "inventory/Orvex_ResourceForSoftwareIdentity.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"
#include "inventory/Orvex_SoftwareIdentityResourceClass.h"
#include "inventory/Orvex_SystemDevice.h"
#include "midapi/MidApi.h"

namespace inventory {
namespace {

// Whose enumeration lists the firmware files, or asks for a class that does.
constexpr const char* kClassesOfFiles[] = {
    Orvex_SoftwareIdentity::kClassName,          Orvex_SoftwareIdentityResource::kClassName,
    Orvex_ElementSoftwareIdentity::kClassName,   Orvex_HostedResource::kClassName,
    Orvex_InstalledSoftwareIdentity::kClassName, Orvex_ResourceForSoftwareIdentity::kClassName};

// Whose enumeration asks the drivers of adapters, or asks for a class that does.
constexpr const char* kClassesOfAdapters[] = {Orvex_EthernetPort::kClassName,
                                              Orvex_PortController::kClassName,
                                              Orvex_SoftwareIdentity::kClassName,
                                              Orvex_ElementSoftwareIdentity::kClassName,
                                              Orvex_ControlledBy::kClassName,
                                              Orvex_EthernetPortConformsToProfile::kClassName,
                                              Orvex_InstalledSoftwareIdentity::kClassName,
                                              Orvex_ResourceForSoftwareIdentity::kClassName,
                                              Orvex_SystemDevice::kClassName};

template <std::size_t kCount>
bool isAnyOf(const char* const (&classes)[kCount], const std::set<std::string>& classNames) {
  return std::any_of(std::begin(classes), std::end(classes),
                     [&](const char* name) { return classNames.contains(name); });
}

// Virtual adapters have no driver that might keep anybody waiting.
bool hasDrivers() {
  const std::vector<ma::AdapterKind> kinds = ma::adapterKinds();
  return std::find(kinds.begin(), kinds.end(), ma::AdapterKind::Kernel) != kinds.end();
}

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

// Registers a provider without the record that CimClasses::add makes: the records of a load are
// compared with those of other versions.
void addQuietly(core::CimClasses& classes, std::unique_ptr<core::CimClass> provider) {
  classes.set(provider->getName(), provider.get());
  static_cast<void>(provider.release());
}

template <class... Providers>
void addAllQuietly(core::CimClasses& classes) {
  (addQuietly(classes, std::make_unique<Providers>()), ...);
}

}  // namespace

SoftwareInventoryAgent::SoftwareInventoryAgent() : core::CimAgent("Software Inventory") {
  ma::useSettings(utils::QuorvelConfig::currentFlashSettings);
  getClasses().add(new Orvex_EthernetPortClass);
  getClasses().add(new Orvex_PortControllerClass);
  getClasses().add(new Orvex_EthernetPortRegisteredProfileClass);
  getClasses().add(new Orvex_SoftwareIdentityClass(m_files));
  getClasses().add(new Orvex_SoftwareIdentityResourceClass(m_files));
  getClasses().add(new Orvex_ElementSoftwareIdentityClass(m_comparisons));
  addAllQuietly<Orvex_ComputerSystemClass, Orvex_ControlledByClass,
                Orvex_EthernetPortConformsToProfileClass, Orvex_HostedResourceClass,
                Orvex_HostedServiceClass, Orvex_InstalledSoftwareIdentityClass,
                Orvex_ResourceForSoftwareIdentityClass, Orvex_SystemDeviceClass>(getClasses());
}

SoftwareInventoryAgent::~SoftwareInventoryAgent() = default;

std::string SoftwareInventoryAgent::describeFirmware(std::span<const std::uint8_t> content) const {
  return describeContent(content);
}

void SoftwareInventoryAgent::lookAhead(const std::set<std::string>& classNames) {
  if (hasDrivers() && isAnyOf(kClassesOfAdapters, classNames)) {
    // What they answer is fresh for a while.
    static_cast<void>(ma::outlineAdapters());
  }
  if (isAnyOf(kClassesOfFiles, classNames)) {
    m_files.look();
  }
  if (classNames.contains(Orvex_ElementSoftwareIdentity::kClassName)) {
    m_comparisons.look(m_files.latest());
  }
}

void SoftwareInventoryAgent::declareClasses(core::CimSchema& schema) const {
  core::declareClass<Orvex_EthernetPort, AnyPort>(schema);
  core::declareClass<Orvex_PortController, AnyController>(schema);
  core::declareClass<Orvex_SoftwareIdentity, AnySoftware>(schema);
  core::declareClass<Orvex_SoftwareIdentityResource, AnyResource>(schema);
  core::declareClass<Orvex_ElementSoftwareIdentity, AnyElementSoftware>(schema);
  core::declarePlainClasses<
      Orvex_EthernetPortRegisteredProfile, Orvex_ComputerSystem, Orvex_ControlledBy,
      Orvex_EthernetPortConformsToProfile, Orvex_HostedResource, Orvex_HostedService,
      Orvex_InstalledSoftwareIdentity, Orvex_ResourceForSoftwareIdentity, Orvex_SystemDevice>(
      schema);
}

void SoftwareInventoryAgent::describeClasses(core::ClassTexts& texts) const {
  cim::addSchemaTexts(texts);
  texts.add(getInventoryTexts());
}

void addSoftwareInventoryAgent() {
  // The broker first: it is then destroyed after the agent.
  core::CimBroker& broker = core::GetCimBroker();
  static SoftwareInventoryAgent agent;
  broker.addAgent(&agent);
}

}  // namespace inventory
