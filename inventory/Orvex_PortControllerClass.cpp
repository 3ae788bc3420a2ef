#include "inventory/Orvex_PortControllerClass.h"

#include <cstdint>
#include <string>
#include <utility>

#include "inventory/Adapters.h"
#include "inventory/DeviceValues.h"
#include "inventory/Orvex_PortController.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_PortController"};
constexpr std::uint16_t kEthernetController = 2;  // DMTF CIM_PortController.ControllerType

class AdapterController final : public Orvex_PortController {
 public:
  explicit AdapterController(std::string identity) : m_identity(std::move(identity)) {
    inventory::setDeviceValues(*this, m_identity, "Ethernet Adapter " + m_identity);
    ControllerType.setValue(kEthernetController);
  }

  [[nodiscard]] bool ownsPort(const Orvex_EthernetPort& port) const override {
    return inventory::getAdapterIdentity(port.getIdentity()) == m_identity;
  }

 private:
  const std::string m_identity;
};

}  // namespace

Orvex_PortControllerClass::Orvex_PortControllerClass()
    : InstanceProvider(Orvex_PortController::kClassName,
                       {kLog, "Orvex_PortControllerClass::getInstances", "getInstances",
                        "PortController::getInstances"}) {}

void Orvex_PortControllerClass::refresh() {
  instances().clear();
  for (inventory::Adapter& adapter : inventory::findAdapters()) {
    instances().add(new AdapterController(std::move(adapter.identity)));
  }
}
