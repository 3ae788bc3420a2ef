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
  std::vector<std::string> identities;
  for (inventory::Adapter& adapter : inventory::findAdapters()) {
    identities.push_back(std::move(adapter.identity));
  }
  inventory::DeviceSet controllers = inventory::makeDeviceSet(std::move(identities));
  if (controllers == m_controllers) {
    return;
  }
  m_controllers = {};  // until all are there
  instances().clear();
  for (const std::string& identity : controllers.identities) {
    instances().add(new AdapterController(identity));
  }
  m_controllers = std::move(controllers);
}
