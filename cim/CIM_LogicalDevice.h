// A device of a system, as software sees it. Its keys are the first four properties.

#ifndef ORVEX_CIM_CIM_LOGICALDEVICE_H_
#define ORVEX_CIM_CIM_LOGICALDEVICE_H_

#include "Utils/Export.h"
#include "cim/CIM_EnabledLogicalElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_LogicalDevice : public CIM_EnabledLogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_LogicalDevice";
  using Superclass = CIM_EnabledLogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.SystemCreationClassName, self.SystemName, self.CreationClassName,
                      self.DeviceID);
  }

  CIM_LogicalDevice();
  ~CIM_LogicalDevice() override;

  core::CimPropertyString SystemCreationClassName{"SystemCreationClassName", this};
  core::CimPropertyString SystemName{"SystemName", this};
  core::CimPropertyString CreationClassName{"CreationClassName", this};
  core::CimPropertyString DeviceID{"DeviceID", this};
};

#endif  // ORVEX_CIM_CIM_LOGICALDEVICE_H_
