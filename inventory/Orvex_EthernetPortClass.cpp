#include "inventory/Orvex_EthernetPortClass.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Conversions.h"
#include "cim/EnabledState.h"
#include "inventory/DeviceValues.h"
#include "inventory/Orvex_EthernetPort.h"
#include "midapi/MidApi.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_EthernetPort"};

// DMTF CIM_NetworkPort.LinkTechnology, indexed by ma::LinkKind.
constexpr std::optional<std::uint16_t> kLinkTechnologies[] = {std::nullopt, 2, 3, 11};

// Indexed by ma::PortState.
constexpr std::optional<std::uint16_t> kEnabledStates[] = {
    std::nullopt, cim::kDisabled, cim::kEnabledButOffline, cim::kEnabled, cim::kInTest};

// Returns an address as DMTF CIM_EthernetPort has it: "02544E000030".
std::string toCimAddress(const std::string& mac) {
  std::string digits;
  std::copy_if(mac.begin(), mac.end(), std::back_inserter(digits),
               [](char sign) { return sign != ':'; });
  return utils::toUpper(std::move(digits));
}

// What is not known stays NULL.
template <class Property, class Value>
void setKnown(Property& property, const std::optional<Value>& value) {
  if (value) {
    property.setValue(*value);
  }
}

class AdapterPort final : public Orvex_EthernetPort {
 public:
  AdapterPort(const ma::AdapterPort& port, ma::AdapterKind kind) : m_identity(port.identifier) {
    inventory::setDeviceValues(*this, m_identity, "Ethernet Port " + m_identity);
    PortNumber.setValue(ma::getPCIAddress(m_identity).function);
    setAddresses(port);
    setLink(port.link);
    if (kind == ma::AdapterKind::Virtual) {  // drivers do not tell
      BootType.setValue(static_cast<std::uint16_t>(port.bootType));
    }
    if (!port.interfaces.empty()) {
      InterfaceNames.setValue(port.interfaces);
    }
  }

  [[nodiscard]] std::string getIdentity() const override { return m_identity; }

 private:
  void setAddresses(const ma::AdapterPort& port) {
    if (!port.link.permanentMac.empty()) {
      PermanentAddress.setValue(toCimAddress(port.link.permanentMac));
    }
    if (!port.mac.empty()) {
      NetworkAddresses.setValue({toCimAddress(port.mac)});
    }
  }

  void setLink(const ma::PortLink& link) {
    setKnown(LinkTechnology, kLinkTechnologies[static_cast<std::size_t>(link.kind)]);
    setKnown(EnabledState, kEnabledStates[static_cast<std::size_t>(link.state)]);
    setKnown(Speed, link.speed);
    setKnown(MaxSpeed, link.maxSpeed);
    setKnown(ActiveMaximumTransmissionUnit, link.largestFrame);
  }

  const std::string m_identity;
};

}  // namespace

Orvex_EthernetPortClass::Orvex_EthernetPortClass()
    : InstanceProvider(Orvex_EthernetPort::kClassName,
                       {kLog, "Orvex_EthernetPortClass::getInstances", "getInstances",
                        "EthernetPort::getInstances"}) {}

void Orvex_EthernetPortClass::refresh() {
  inventory::DeviceSet ports = inventory::makeDeviceSet(ma::outlineAdapters());
  if (ports == m_ports) {
    return;
  }
  m_ports = {};  // until all are there
  instances().clear();
  for (const ma::AdapterListing& adapter : ports.adapters) {
    for (const ma::AdapterPort& port : adapter.ports) {
      instances().add(new AdapterPort(port, adapter.kind));
    }
  }
  m_ports = std::move(ports);
}
