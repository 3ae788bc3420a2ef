// A device is a part of a system.

#ifndef ORVEX_CIM_CIM_SYSTEMDEVICE_H_
#define ORVEX_CIM_CIM_SYSTEMDEVICE_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalDevice.h"
#include "cim/CIM_System.h"
#include "cim/CIM_SystemComponent.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_SystemDevice : public CIM_SystemComponent {
 public:
  static constexpr const char* kClassName = "CIM_SystemDevice";
  using Superclass = CIM_SystemComponent;

  CIM_SystemDevice();
  ~CIM_SystemDevice() override;

  core::CimPropertyRefT<CIM_System> GroupComponent{"GroupComponent", this};
  core::CimPropertyRefT<CIM_LogicalDevice> PartComponent{"PartComponent", this};
};

#endif  // ORVEX_CIM_CIM_SYSTEMDEVICE_H_
