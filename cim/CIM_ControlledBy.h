// A device is controlled by a controller.

#ifndef ORVEX_CIM_CIM_CONTROLLEDBY_H_
#define ORVEX_CIM_CIM_CONTROLLEDBY_H_

#include "Utils/Export.h"
#include "cim/CIM_Controller.h"
#include "cim/CIM_DeviceConnection.h"
#include "cim/CIM_LogicalDevice.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_ControlledBy : public CIM_DeviceConnection {
 public:
  static constexpr const char* kClassName = "CIM_ControlledBy";
  using Superclass = CIM_DeviceConnection;

  CIM_ControlledBy();
  ~CIM_ControlledBy() override;

  core::CimPropertyRefT<CIM_Controller> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<CIM_LogicalDevice> Dependent{"Dependent", this};
  core::CimPropertyUint16 AccessState{"AccessState", this};
  core::CimPropertyDatetime TimeOfDeviceReset{"TimeOfDeviceReset", this};
  core::CimPropertyUint32 NumberOfHardResets{"NumberOfHardResets", this};
  core::CimPropertyUint32 NumberOfSoftResets{"NumberOfSoftResets", this};
  core::CimPropertyString DeviceNumber{"DeviceNumber", this};
  core::CimPropertyUint16 AccessMode{"AccessMode", this};
  core::CimPropertyUint16 AccessPriority{"AccessPriority", this};
};

#endif  // ORVEX_CIM_CIM_CONTROLLEDBY_H_
