// A logical element that can be enabled and disabled.

#ifndef ORVEX_CIM_CIM_ENABLEDLOGICALELEMENT_H_
#define ORVEX_CIM_CIM_ENABLEDLOGICALELEMENT_H_

#include <vector>

#include "Utils/Export.h"
#include "cim/CIM_LogicalElement.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

class ORVEX_CORE_API CIM_EnabledLogicalElement : public CIM_LogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_EnabledLogicalElement";
  using Superclass = CIM_LogicalElement;

  [[nodiscard]] static std::vector<core::MethodDeclaration> getMethods();

  CIM_EnabledLogicalElement();
  ~CIM_EnabledLogicalElement() override;

  core::CimPropertyUint16 EnabledState{"EnabledState", this};
  core::CimPropertyString OtherEnabledState{"OtherEnabledState", this};
  core::CimPropertyUint16 RequestedState{"RequestedState", this};
  core::CimPropertyUint16 EnabledDefault{"EnabledDefault", this};
  core::CimPropertyDatetime TimeOfLastStateChange{"TimeOfLastStateChange", this};
  core::CimPropertyUint16_arr AvailableRequestedStates{"AvailableRequestedStates", this};
  core::CimPropertyUint16 TransitioningToState{"TransitioningToState", this};
  core::CimPropertyDatetime InstallDate{"InstallDate", this};
  core::CimPropertyString Name{"Name", this};
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

#endif  // ORVEX_CIM_CIM_ENABLEDLOGICALELEMENT_H_
