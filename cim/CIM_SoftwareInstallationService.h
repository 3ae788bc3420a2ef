// A service that installs software.

#ifndef ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICE_H_
#define ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICE_H_

#include <vector>

#include "Utils/Export.h"
#include "cim/CIM_Service.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

class ORVEX_CORE_API CIM_SoftwareInstallationService : public CIM_Service {
 public:
  static constexpr const char* kClassName = "CIM_SoftwareInstallationService";
  using Superclass = CIM_Service;

  [[nodiscard]] static std::vector<core::MethodDeclaration> getMethods();

  CIM_SoftwareInstallationService();
  ~CIM_SoftwareInstallationService() override;

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

#endif  // ORVEX_CIM_CIM_SOFTWAREINSTALLATIONSERVICE_H_
