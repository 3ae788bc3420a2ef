// A port of a network.

#ifndef ORVEX_CIM_CIM_NETWORKPORT_H_
#define ORVEX_CIM_CIM_NETWORKPORT_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalPort.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_NetworkPort : public CIM_LogicalPort {
 public:
  static constexpr const char* kClassName = "CIM_NetworkPort";
  using Superclass = CIM_LogicalPort;

  CIM_NetworkPort();
  ~CIM_NetworkPort() override;

  core::CimPropertyUint64 Speed{"Speed", this};
  core::CimPropertyUint16 PortNumber{"PortNumber", this};
  core::CimPropertyUint16 LinkTechnology{"LinkTechnology", this};
  core::CimPropertyString OtherLinkTechnology{"OtherLinkTechnology", this};
  core::CimPropertyString PermanentAddress{"PermanentAddress", this};
  core::CimPropertyString_arr NetworkAddresses{"NetworkAddresses", this};
  core::CimPropertyBoolean FullDuplex{"FullDuplex", this};
  core::CimPropertyBoolean AutoSense{"AutoSense", this};
  core::CimPropertyUint64 SupportedMaximumTransmissionUnit{"SupportedMaximumTransmissionUnit",
                                                           this};
  core::CimPropertyUint64 ActiveMaximumTransmissionUnit{"ActiveMaximumTransmissionUnit", this};
};

#endif  // ORVEX_CIM_CIM_NETWORKPORT_H_
