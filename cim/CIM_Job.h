// A piece of work that a system does.

#ifndef ORVEX_CIM_CIM_JOB_H_
#define ORVEX_CIM_CIM_JOB_H_

#include "Utils/Export.h"
#include "cim/CIM_LogicalElement.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_Job : public CIM_LogicalElement {
 public:
  static constexpr const char* kClassName = "CIM_Job";
  using Superclass = CIM_LogicalElement;

  CIM_Job();
  ~CIM_Job() override;

  core::CimPropertyString JobStatus{"JobStatus", this};
  core::CimPropertyDatetime TimeSubmitted{"TimeSubmitted", this};
  core::CimPropertyDatetime ScheduledStartTime{"ScheduledStartTime", this};
  core::CimPropertyDatetime StartTime{"StartTime", this};
  core::CimPropertyDatetime ElapsedTime{"ElapsedTime", this};
  core::CimPropertyUint32 JobRunTimes{"JobRunTimes", this};
  core::CimPropertyUint8 RunMonth{"RunMonth", this};
  core::CimPropertySint8 RunDay{"RunDay", this};
  core::CimPropertySint8 RunDayOfWeek{"RunDayOfWeek", this};
  core::CimPropertyDatetime RunStartInterval{"RunStartInterval", this};
  core::CimPropertyUint16 LocalOrUtcTime{"LocalOrUtcTime", this};
  core::CimPropertyDatetime UntilTime{"UntilTime", this};
  core::CimPropertyString Notify{"Notify", this};
  core::CimPropertyString Owner{"Owner", this};
  core::CimPropertyUint32 Priority{"Priority", this};
  core::CimPropertyUint16 PercentComplete{"PercentComplete", this};
  core::CimPropertyBoolean DeleteOnCompletion{"DeleteOnCompletion", this};
  core::CimPropertyUint16 ErrorCode{"ErrorCode", this};
  core::CimPropertyString ErrorDescription{"ErrorDescription", this};
  core::CimPropertyUint16 RecoveryAction{"RecoveryAction", this};
  core::CimPropertyString OtherRecoveryAction{"OtherRecoveryAction", this};
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

#endif  // ORVEX_CIM_CIM_JOB_H_
