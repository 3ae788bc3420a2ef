#include "inventory/Orvex_EthernetPortClass.h"

#include <memory>
#include <string>
#include <utility>

#include "inventory/DeviceValues.h"
#include "inventory/Orvex_EthernetPort.h"
#include "midapi/MidApi.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_EthernetPort"};

class AdapterPort final : public Orvex_EthernetPort {
 public:
  explicit AdapterPort(std::string identity) : m_identity(std::move(identity)) {
    inventory::setDeviceValues(*this, m_identity, "Ethernet Port " + m_identity);
    PortNumber.setValue(ma::getPCIAddress(m_identity).function);
  }

  [[nodiscard]] std::string getIdentity() const override { return m_identity; }

 private:
  const std::string m_identity;
};

}  // namespace

Orvex_EthernetPortClass::Orvex_EthernetPortClass()
    : InstanceProvider(Orvex_EthernetPort::kClassName,
                       {kLog, "Orvex_EthernetPortClass::getInstances", "getInstances",
                        "EthernetPort::getInstances"}) {}

void Orvex_EthernetPortClass::refresh() {
  inventory::DeviceSet ports = inventory::makeDeviceSet(ma::enumerateAdapters());
  if (ports == m_ports) {
    return;
  }
  m_ports = {};  // until all are there
  instances().clear();
  for (const std::string& identity : ports.identities) {
    instances().add(new AdapterPort(identity));
  }
  m_ports = std::move(ports);
}
