// Something that a system does for others.

#ifndef ORVEX_CIM_CIM_SERVICE_H_
#define ORVEX_CIM_CIM_SERVICE_H_

#include "Utils/Export.h"
#include "cim/CIM_EnabledLogicalElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_Service : public CIM_EnabledLogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_Service";
  using Superclass = CIM_EnabledLogicalElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.SystemCreationClassName, self.SystemName, self.CreationClassName,
                      self.Name);
  }

  CIM_Service();
  ~CIM_Service() override;

  core::CimPropertyString SystemCreationClassName{"SystemCreationClassName", this};
  core::CimPropertyString SystemName{"SystemName", this};
  core::CimPropertyString CreationClassName{"CreationClassName", this};
  core::CimPropertyString Name{"Name", this};
  core::CimPropertyString PrimaryOwnerName{"PrimaryOwnerName", this};
  core::CimPropertyString PrimaryOwnerContact{"PrimaryOwnerContact", this};
  core::CimPropertyString StartMode{"StartMode", this};
  core::CimPropertyBoolean Started{"Started", this};
  core::CimPropertyUint16 EnabledState{"EnabledState", this};
  core::CimPropertyString OtherEnabledState{"OtherEnabledState", this};
  core::CimPropertyUint16 RequestedState{"RequestedState", this};
  core::CimPropertyUint16 EnabledDefault{"EnabledDefault", this};
  core::CimPropertyDatetime TimeOfLastStateChange{"TimeOfLastStateChange", this};
  core::CimPropertyUint16_arr AvailableRequestedStates{"AvailableRequestedStates", this};
  core::CimPropertyUint16 TransitioningToState{"TransitioningToState", this};
  core::CimPropertyDatetime InstallDate{"InstallDate", this};
  core::CimPropertyUint16_arr OperationalStatus{"OperationalStatus", this};
  core::CimPropertyString_arr StatusDescriptions{"StatusDescriptions", this};
  core::CimPropertyString Status{"Status", this};
  core::CimPropertyUint16 HealthState{"HealthState", this};
  core::CimPropertyUint16 PrimaryStatus{"PrimaryStatus", this};
  core::CimPropertyUint16 DetailedStatus{"DetailedStatus", this};
  core::CimPropertyUint16 OperatingStatus{"OperatingStatus", this};
  core::CimPropertyUint16 CommunicationStatus{"CommunicationStatus", this};
  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyString Description{"Description", this};
  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyUint64 Generation{"Generation", this};
};

#endif  // ORVEX_CIM_CIM_SERVICE_H_
