// A device is connected to another.

#ifndef ORVEX_CIM_CIM_DEVICECONNECTION_H_
#define ORVEX_CIM_CIM_DEVICECONNECTION_H_

#include "Utils/Export.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_LogicalDevice.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_DeviceConnection : public CIM_Dependency {
 public:
  static constexpr const char* kClassName = "CIM_DeviceConnection";
  using Superclass = CIM_Dependency;

  CIM_DeviceConnection();
  ~CIM_DeviceConnection() override;

  core::CimPropertyRefT<CIM_LogicalDevice> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_LogicalDevice> Dependent{"Dependent", this};
  core::CimPropertyUint64 NegotiatedSpeed{"NegotiatedSpeed", this};
  core::CimPropertyUint32 NegotiatedDataWidth{"NegotiatedDataWidth", this};
};

#endif  // ORVEX_CIM_CIM_DEVICECONNECTION_H_
