// A part of a system that is not physical.

#ifndef ORVEX_CIM_CIM_LOGICALELEMENT_H_
#define ORVEX_CIM_CIM_LOGICALELEMENT_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedSystemElement.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_LogicalElement : public CIM_ManagedSystemElement {
 public:
  static constexpr const char* kClassName = "CIM_LogicalElement";
  using Superclass = CIM_ManagedSystemElement;

  CIM_LogicalElement();
  ~CIM_LogicalElement() override;

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

#endif  // ORVEX_CIM_CIM_LOGICALELEMENT_H_
