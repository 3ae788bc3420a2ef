#include "agent/Orvex_SoftwareInstallationService.h"

#include <initializer_list>

#include "Os/Environment.h"
#include "Utils/Format.h"
#include "Utils/TimeStamp.h"
#include "agent/InstallSteps.h"
#include "agent/PathArguments.h"
#include "cim/InstallCharacteristics.h"
#include "cim/InstallOptions.h"
#include "cim/OperationalStatus.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationService"};

}  // namespace

Orvex_SoftwareInstallationService::Orvex_SoftwareInstallationService() {
  using Self = Orvex_SoftwareInstallationService;
  using Base = core::CimInstance;
  addMethod("InstallFromSoftwareIdentity",
            static_cast<Method>(&Self::forward<&Base::InstallFromSoftwareIdentity>));
  addMethod("InstallFromURI", static_cast<Method>(&Self::forward<&Base::InstallFromURI>));
  addMethod("CheckSoftwareIdentity",
            static_cast<Method>(&Self::forward<&Base::CheckSoftwareIdentity>));
}

Orvex_SoftwareInstallationService::~Orvex_SoftwareInstallationService() = default;

std::uint32_t Orvex_SoftwareInstallationService::InstallFromSoftwareIdentity(
    core::CimPropertyList* in, core::CimPropertyList* /*out*/, core::CimInstance** job) {
  const agent::Method& method = agent::kInstallFromSoftwareIdentity;
  const utils::TimeStamp timeStamp("InstallFromSoftwareIdentity");
  const agent::Arguments arguments(in);
  const auto& options = arguments.expect<core::CimPropertyUint16_arr>("InstallOptions");
  const auto& values = arguments.expect<core::CimPropertyString_arr>("InstallOptionsValues");
  const auto& source = arguments.expect<core::CimPropertyRef>("Source");
  const auto& target = arguments.expect<core::CimPropertyRef>("Target");
  const auto& collection = arguments.expect<core::CimPropertyRef>("Collection");
  if (!agent::isForTarget(method, source, target, collection)) {
    return cim::kCollectionNotSupported;
  }
  agent::expectValues({&options, &source, &target});
  agent::expectPaths({&source, &target});
  utils::logDebug(kLog, method.function, "Starting arguments verification success");
  // The identity says which image types it holds, so a request may not choose among them.
  if (!agent::areOptionsSupported(options.getValue()) ||
      cim::hasOption(options.getValue(), cim::kTargetTypes)) {
    utils::logDebug(kLog, method.function, "One of value of InstallOptions value is not supported");
    return cim::kInvalidParameter;
  }
  const std::optional<std::string> uri = agent::findUri(method, source.toString());
  if (!uri) {
    return cim::kInvalidParameter;
  }
  return agent::processUpdate(
      method, {*uri, target.toString(), options.getValue(), values.getValue()}, job);
}

std::uint32_t Orvex_SoftwareInstallationService::InstallFromURI(core::CimPropertyList* in,
                                                                core::CimPropertyList* /*out*/,
                                                                core::CimInstance** job) {
  const utils::TimeStamp timeStamp("InstallFromURI");
  const agent::Arguments arguments(in);
  const auto& uri = arguments.expect<core::CimPropertyString>("URI");
  const auto& target = arguments.expect<core::CimPropertyRef>("Target");
  const auto& options = arguments.expect<core::CimPropertyUint16_arr>("InstallOptions");
  const auto& values = arguments.expect<core::CimPropertyString_arr>("InstallOptionsValues");
  agent::expectValues({&uri, &target, &options});
  agent::expectPaths({&target});
  if (!agent::areOptionsSupported(options.getValue())) {
    return cim::kInvalidParameter;
  }
  return agent::processUpdate(
      agent::kInstallFromUri,
      {uri.getValue(), target.toString(), options.getValue(), values.getValue()}, job);
}

std::uint32_t Orvex_SoftwareInstallationService::CheckSoftwareIdentity(core::CimPropertyList* in,
                                                                       core::CimPropertyList* out,
                                                                       core::CimInstance** job) {
  const agent::Method& method = agent::kCheckSoftwareIdentity;
  const utils::TimeStamp timeStamp("CheckSoftwareIdentity");
  const agent::Arguments inputs(in);
  const auto& source = inputs.expect<core::CimPropertyRef>("Source");
  const auto& target = inputs.expect<core::CimPropertyRef>("Target");
  const auto& collection = inputs.expect<core::CimPropertyRef>("Collection");
  auto& characteristics =
      agent::Arguments(out).expect<core::CimPropertyUint16_arr>("InstallCharacteristics");
  if (!agent::isForTarget(method, source, target, collection)) {
    return cim::kCollectionNotSupported;
  }
  agent::expectValues({&source, &target});
  agent::expectPaths({&source, &target});
  utils::logDebug(kLog, method.function, "Starting arguments verification success");
  if (!characteristics.getValue().empty()) {
    utils::logDebug(kLog, method.function,
                    "InstallCharacterisitcs argument is an output method's argument. Any input "
                    "value is not supported.");
    return cim::kInvalidParameter;
  }
  const std::optional<std::string> uri = agent::findUri(method, source.toString());
  if (!uri) {
    return cim::kInvalidParameter;
  }
  const std::uint32_t code = agent::processUpdate(method, {*uri, target.toString(), {}, {}}, job);
  if (code == cim::kCompletedWithNoError) {
    characteristics.setValue({cim::kNoRebootRequired});
  }
  return code;
}

void Orvex_SoftwareInstallationService::setPropertyValues() {
  Caption.setValue("Ethernet Firmware Update");
  Description.setValue("Firmware Update Service for Zolan(R) Ethernet Adapters");
  OperationalStatus.clear();  // a second call must not add a second status
  OperationalStatus.addValue(cim::kOperationalStatusOk);
  SystemCreationClassName.setValue("CIM_UnitaryComputerSystem");
  SystemName.setValue(os::getComputerName());
  CreationClassName.setValue(getClassName());
  Name.setValue(utils::format("Orvex:%s", kServiceName));
  PrimaryOwnerName.setValue("Zolan Corporation");
  PrimaryOwnerContact.setValue("https://www.zolan.example");
  core::markKeys(*this);
  // Nothing is known of these; a value that somebody set does not stay.
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

Orvex_SoftwareInstallationServiceClass::Orvex_SoftwareInstallationServiceClass()
    : SingleInstanceProvider(Orvex_SoftwareInstallationService::kClassName,
                             {kLog, "Orvex_SoftwareInstallationServiceClass::getInstances",
                              "getInstance", "SoftwareInstallationService::getInstances"}) {}
