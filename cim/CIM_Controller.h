// A device that controls others.

#ifndef ORVEX_CIM_CIM_CONTROLLER_H_
#define ORVEX_CIM_CIM_CONTROLLER_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalDevice.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_Controller : public CIM_LogicalDevice {
 public:
  static constexpr const char* kClassName = "CIM_Controller";
  using Superclass = CIM_LogicalDevice;

  CIM_Controller();
  ~CIM_Controller() override;

  core::CimPropertyDatetime TimeOfLastReset{"TimeOfLastReset", this};
  core::CimPropertyUint16 ProtocolSupported{"ProtocolSupported", this};
  core::CimPropertyUint32 MaxNumberControlled{"MaxNumberControlled", this};
  core::CimPropertyString ProtocolDescription{"ProtocolDescription", this};
};

#endif  // ORVEX_CIM_CIM_CONTROLLER_H_
