// A port, whatever goes through it.

#ifndef ORVEX_CIM_CIM_LOGICALPORT_H_
#define ORVEX_CIM_CIM_LOGICALPORT_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalDevice.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_LogicalPort : public CIM_LogicalDevice {
 public:
  static constexpr const char* kClassName = "CIM_LogicalPort";
  using Superclass = CIM_LogicalDevice;

  CIM_LogicalPort();
  ~CIM_LogicalPort() override;

  core::CimPropertyUint64 Speed{"Speed", this};
  core::CimPropertyUint64 MaxSpeed{"MaxSpeed", this};
  core::CimPropertyUint64 RequestedSpeed{"RequestedSpeed", this};
  core::CimPropertyUint16 UsageRestriction{"UsageRestriction", this};
  core::CimPropertyUint16 PortType{"PortType", this};
  core::CimPropertyString OtherPortType{"OtherPortType", this};
};

#endif  // ORVEX_CIM_CIM_LOGICALPORT_H_
