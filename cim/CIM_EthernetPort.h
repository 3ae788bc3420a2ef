// A port of an Ethernet.

#ifndef ORVEX_CIM_CIM_ETHERNETPORT_H_
#define ORVEX_CIM_CIM_ETHERNETPORT_H_

#include "Utils/Export.h"
#include "cim/CIM_NetworkPort.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_EthernetPort : public CIM_NetworkPort {
 public:
  static constexpr const char* kClassName = "CIM_EthernetPort";
  using Superclass = CIM_NetworkPort;

  CIM_EthernetPort();
  ~CIM_EthernetPort() override;

  core::CimPropertyUint16 PortType{"PortType", this};
  core::CimPropertyString_arr NetworkAddresses{"NetworkAddresses", this};
  core::CimPropertyUint32 MaxDataSize{"MaxDataSize", this};
  core::CimPropertyUint16_arr Capabilities{"Capabilities", this};
  core::CimPropertyString_arr CapabilityDescriptions{"CapabilityDescriptions", this};
  core::CimPropertyUint16_arr EnabledCapabilities{"EnabledCapabilities", this};
  core::CimPropertyString_arr OtherEnabledCapabilities{"OtherEnabledCapabilities", this};
  core::CimPropertyUint16 PVID{"PVID", this};
  core::CimPropertyUint16 PoEPowerEntityType{"PoEPowerEntityType", this};
  core::CimPropertyString_arr PortDiscriminator{"PortDiscriminator", this};
};

#endif  // ORVEX_CIM_CIM_ETHERNETPORT_H_
