#include "agent/Orvex_SoftwareInstallationService.h"

#include <initializer_list>

#include "Os/Environment.h"
#include "Utils/Format.h"
#include "Utils/TimeStamp.h"
#include "agent/InstallSteps.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationService"};
constexpr std::uint16_t kOperationalStatusOk = 2;

}  // namespace

Orvex_SoftwareInstallationService::Orvex_SoftwareInstallationService() {
  addMethod("InstallFromURI",
            static_cast<Method>(&Orvex_SoftwareInstallationService::invokeInstallFromURI));
}

Orvex_SoftwareInstallationService::~Orvex_SoftwareInstallationService() = default;

std::uint32_t Orvex_SoftwareInstallationService::InstallFromURI(core::CimPropertyList* in,
                                                                core::CimPropertyList* /*out*/,
                                                                core::CimInstance** job) {
  const utils::TimeStamp timeStamp("InstallFromURI");
  install::Arguments arguments(in);
  const auto& uri = arguments.expect<core::CimPropertyString>("URI");
  const auto& target = arguments.expect<core::CimPropertyRef>("Target");
  const auto& options = arguments.expect<core::CimPropertyUint16_arr>("InstallOptions");
  const auto& values = arguments.expect<core::CimPropertyString_arr>("InstallOptionsValues");
  for (const core::CimProperty* argument :
       std::initializer_list<const core::CimProperty*>{&uri, &target, &options}) {
    install::expectValue(*argument);
  }
  if (!install::areOptionsSupported(options.getValue())) {
    return cim::kInvalidParameter;
  }
  const install::Update update{uri.getValue(), target.toString(), options.getValue(),
                               values.getValue()};
  return install::updateTarget(update, install::kInstallFromUriRecords, job);
}

void Orvex_SoftwareInstallationService::setPropertyValues() {
  Caption.setValue("Ethernet Firmware Update");
  Description.setValue("Firmware Update Service for Zolan(R) Ethernet Adapters");
  OperationalStatus.clear();
  OperationalStatus.addValue(kOperationalStatusOk);
  SystemCreationClassName.setValue("CIM_UnitaryComputerSystem");
  SystemName.setValue(os::getComputerName());
  CreationClassName.setValue(getClassName());
  Name.setValue(utils::format("Orvex:%s", kServiceName));
  PrimaryOwnerName.setValue("Zolan Corporation");
  PrimaryOwnerContact.setValue("https://www.zolan.example");
  for (core::CimProperty* key : std::initializer_list<core::CimProperty*>{
           &SystemCreationClassName, &SystemName, &CreationClassName, &Name}) {
    key->setKey();
  }
  for (core::CimProperty* property :
       std::initializer_list<core::CimProperty*>{&InstanceID,
                                                 &ElementName,
                                                 &Generation,
                                                 &InstallDate,
                                                 &StatusDescriptions,
                                                 &Status,
                                                 &HealthState,
                                                 &PrimaryStatus,
                                                 &DetailedStatus,
                                                 &OperatingStatus,
                                                 &CommunicationStatus,
                                                 &EnabledState,
                                                 &OtherEnabledState,
                                                 &RequestedState,
                                                 &EnabledDefault,
                                                 &TimeOfLastStateChange,
                                                 &AvailableRequestedStates,
                                                 &TransitioningToState,
                                                 &StartMode,
                                                 &Started}) {
    property->setNull();
  }
}

std::uint32_t Orvex_SoftwareInstallationService::invokeInstallFromURI(core::CimPropertyList* in,
                                                                      core::CimPropertyList* out,
                                                                      core::CimInstance** job) {
  return InstallFromURI(in, out, job);
}

Orvex_SoftwareInstallationServiceClass::Orvex_SoftwareInstallationServiceClass()
    : SingleInstanceProvider(Orvex_SoftwareInstallationService::kClassName,
                             {kLog, "Orvex_SoftwareInstallationServiceClass::getInstances",
                              "getInstance", "SoftwareInstallationService::getInstances"}) {}
