#include "inventory/Orvex_PortControllerClass.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "inventory/Adapters.h"
#include "inventory/DeviceValues.h"
#include "inventory/Orvex_PortController.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_PortController"};
// DMTF CIM_PortController.ControllerType and CIM_Controller.ProtocolSupported.
constexpr std::uint16_t kEthernetController = 2;
constexpr std::uint16_t kInfiniBandController = 3;
constexpr std::uint16_t kPci = 5;

void setKnown(core::CimPropertyString& property, const std::string& text) {
  if (!text.empty()) {
    property.setValue(text);
  }
}

class AdapterController final : public Orvex_PortController {
 public:
  explicit AdapterController(const ma::AdapterListing& adapter) : m_identity(adapter.pci) {
    inventory::setDeviceValues(*this, m_identity, "Ethernet Adapter " + m_identity);
    setKnown(ElementName, adapter.name);
    ControllerType.setValue(isInfiniBand(adapter) ? kInfiniBandController : kEthernetController);
    ProtocolSupported.setValue(kPci);
    setIds(adapter);
    setKnown(PartNumber, adapter.partNumber);
    setKnown(SerialNumber, adapter.serialNumber);
    setKnown(DriverName, adapter.driver);
    IsUpdatable.setValue(adapter.isUpdatable ? 1 : 0);
    setKnown(WhyNotUpdatable, adapter.whyNotUpdatable);
    IsBeingWritten.setValue(adapter.isBeingWritten ? 1 : 0);
  }

  [[nodiscard]] bool ownsPort(const Orvex_EthernetPort& port) const override {
    return inventory::getAdapterIdentity(port.getIdentity()) == m_identity;
  }

 private:
  static bool isInfiniBand(const ma::AdapterListing& adapter) {
    return !adapter.ports.empty() && adapter.ports.front().link.kind == ma::LinkKind::InfiniBand;
  }

  void setIds(const ma::AdapterListing& adapter) {
    VendorID.setValue(adapter.vendor);
    PCIDeviceID.setValue(adapter.device);
    if (adapter.subsystemVendor != 0) {  // which is nobody's
      SubsystemVendorID.setValue(adapter.subsystemVendor);
      SubsystemID.setValue(adapter.subsystemDevice);
    }
  }

  const std::string m_identity;
};

}  // namespace

Orvex_PortControllerClass::Orvex_PortControllerClass(FindProblems findProblems)
    : InstanceProvider(Orvex_PortController::kClassName,
                       {kLog, "Orvex_PortControllerClass::getInstances", "getInstances",
                        "PortController::getInstances"}),
      m_findProblems(findProblems) {}

void Orvex_PortControllerClass::reportProblems() {
  std::set<std::string> found;
  for (std::string& text : m_findProblems()) {
    if (!m_reported.contains(text)) {
      utils::logError(kLog, "Orvex_PortControllerClass::getInstances", "%s", text.c_str());
    }
    found.insert(std::move(text));
  }
  m_reported = std::move(found);
}

void Orvex_PortControllerClass::refresh() {
  reportProblems();
  inventory::DeviceSet controllers = inventory::makeDeviceSet(ma::outlineAdapters());
  if (controllers == m_controllers) {
    return;
  }
  m_controllers = {};  // until all are there
  instances().clear();
  for (const ma::AdapterListing& adapter : controllers.adapters) {
    instances().add(new AdapterController(adapter));
  }
  m_controllers = std::move(controllers);
}
