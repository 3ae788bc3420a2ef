#include "agent/Orvex_SoftwareInstallationService.h"

#include <initializer_list>
#include <optional>
#include <vector>

#include "Os/Environment.h"
#include "Utils/Assert.h"
#include "Utils/Format.h"
#include "Utils/TimeStamp.h"
#include "agent/ConcreteJobFactory.h"
#include "agent/InstallSteps.h"
#include "agent/PathArguments.h"
#include "cim/InstallCharacteristics.h"
#include "cim/InstallOptions.h"
#include "cim/MethodSignatures.h"
#include "cim/OperationalStatus.h"
#include "core/CimBroker.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationService"};

// What tells one method from another.
struct UpdateMethod {
  const char* function;     // what it logs under
  const char* bothTargets;  // the fault of a request with a target and a collection
  const char* lookUp;       // what its records of things that cannot be found begin with
  const char* jobStep;      // what its record of the job class's "invalid parameter" begins with
  bool create;              // whether it makes a job
};

constexpr UpdateMethod kInstallFromUri = {
    "Orvex_SoftwareInstallationService::InstallFromURI",
    "",  // has no collection
    "",
    "Job creation",
    true,
};

constexpr UpdateMethod kInstallFromSoftwareIdentity = {
    "Orvex_SoftwareInstallationService::InstallFromSoftwareIdentity",
    "Target and Collection are defined",
    "",
    "Job creation",
    true,
};

constexpr UpdateMethod kCheckSoftwareIdentity = {
    "Orvex_SoftwareInstallationService::CheckSoftwareIdentity",
    "Both Target and Collection are defined",
    "Checking ",
    "Image verification",
    false,
};

// Of a target and a collection exactly one must have a value, else throws utils::EUnspecifiedError.
// Returns false for a collection, to which nothing can be installed.
bool isForTarget(const UpdateMethod& method, const core::CimProperty& source,
                 const core::CimProperty& target, const core::CimProperty& collection) {
  utils::logDebug(kLog, method.function, "All arguments are defined");
  utils::logDebug(kLog, method.function, "Target:%d, Source:%d, Collection:%d", target.isNull(),
                  source.isNull(), collection.isNull());
  if (!target.isNull() && !collection.isNull()) {
    throw utils::EUnspecifiedError(method.bothTargets);
  }
  if (target.isNull() && collection.isNull()) {
    throw utils::EUnspecifiedError("Neither Target nor Collection are defined");
  }
  return !target.isNull();
}

// Returns the instance that the argument names, null when there is none.
core::CimInstance* findInstance(const UpdateMethod& method, const agent::PathArgument& argument) {
  core::CimInstance* instance = core::GetCimBroker().getInstanceByPath(argument.path);
  if (instance == nullptr) {
    utils::logDebug(kLog, method.function, "%sFirmware Update cannot find instance '%s'",
                    method.lookUp, argument.text.c_str());
  }
  return instance;
}

// Returns the URI of the file of a software identity; nothing when there is no such identity, or it
// is no firmware image that can be installed.
std::optional<std::string> findUri(const UpdateMethod& method,
                                   const agent::PathArgument& argument) {
  core::CimInstance* instance = findInstance(method, argument);
  if (instance == nullptr) {
    return std::nullopt;
  }
  const std::string& path = argument.text;
  const auto* source = dynamic_cast<Orvex_SoftwareIdentity*>(instance);
  if (source == nullptr || instance->getClassName() != Orvex_SoftwareIdentity::kClassName) {
    utils::logDebug(kLog, method.function, "%sFirmware Update does not support source '%s'",
                    method.lookUp, path.c_str());
    return std::nullopt;
  }
  if (source->getImageKind() != Orvex_SoftwareIdentity::kFirmwareImage) {
    utils::logDebug(kLog, method.function,
                    "%sFirmware Update does not support source '%s'. It is not a proper Firmware "
                    "Image.",
                    method.lookUp, path.c_str());
    return std::nullopt;
  }
  // Copied: the source may not outlive the broker's next question to its agent.
  const std::string identity = source->getIdentity();
  const std::vector<std::string> targetTypes = source->TargetTypes.getValue();
  std::string uri = agent::findResourceUri(identity);
  if (uri.empty()) {
    utils::logDebug(kLog, method.function,
                    "Could not obtain URI from the SoftwareIdentityResource (%s)",
                    identity.c_str());
    return std::nullopt;
  }
  utils::logDebug(kLog, method.function, "URI is: %s", uri.c_str());
  if (targetTypes.empty()) {
    utils::logDebug(kLog, method.function, "Source '%s' does not contain any TargetTypes",
                    path.c_str());
    return std::nullopt;
  }
  utils::logDebug(kLog, method.function, "TargetTypes are: %s",
                  agent::join(targetTypes, '+').c_str());
  return uri;
}

struct Target {
  std::string identity;  // empty when it is refused
  cim::InstallReturn refusal = cim::kInvalidParameter;
};

Target resolveTarget(const UpdateMethod& method, const agent::PathArgument& argument) {
  core::CimInstance* instance = findInstance(method, argument);
  if (instance == nullptr) {
    return {};
  }
  const std::string& path = argument.text;
  const std::optional<std::string> port = agent::findTargetPort(*instance);
  if (!port) {
    utils::logDebug(kLog, method.function, "Firmware Update does not support target '%s'",
                    path.c_str());
    return {{}, cim::kNotApplicableToTarget};
  }
  if (port->empty()) {
    utils::logDebug(kLog, method.function, "Firmware Update does not support instance '%s'",
                    path.c_str());
  }
  return {*port};
}

// Returns what the job class's answer is translated into; one without a case is a success. No
// table, since each record names the line where it stands.
cim::InstallReturn translate(const UpdateMethod& method, std::int32_t result,
                             const std::string& targetPath) {
  const char* const function = method.function;
  const char* const target = targetPath.c_str();
  switch (result) {
    case agent::kJobInvalidParameter:
      utils::logDebug(kLog, function, "%s returned Invalid Parameter for '%s'", method.jobStep,
                      target);
      return cim::kInvalidParameter;
    case agent::kJobAdapterNotSupported:
      utils::logDebug(kLog, function, "Target is not supported by service for '%s'", target);
      return cim::kUnsupportedTargetType;
    case agent::kJobDowngradeDetected:
      utils::logDebug(kLog, function,
                      "Downgrade is not supported by service for '%s'. Execute with FORCE INSTALL "
                      "flag.",
                      target);
      return cim::kDowngradeNotSupported;
    case agent::kJobUnspecifiedError:
      utils::logDebug(kLog, function, "Unspecified Error for '%s'", target);
      return cim::kUnspecifiedError;
    case agent::kJobNotApplicable:
      utils::logDebug(kLog, function, "Not applicable for target for '%s' ", target);
      return cim::kNotApplicableToTarget;
    case agent::kJobInvalidUri:
      utils::logDebug(kLog, function, "Invalid URI for '%s'", target);
      return cim::kInvalidParameter;
    case agent::kJobUriDoesNotExist:
      utils::logDebug(kLog, function, "URI does not exists for '%s'", target);
      return cim::kInvalidParameter;
    case agent::kJobImageReadError:
      utils::logDebug(kLog, function, "Job cannot read the URI for '%s'", target);
      return cim::kUnspecifiedError;
    case agent::kJobOtherJobRunning:
      utils::logDebug(kLog, function, "Other job is in progress '%s'", target);
      return cim::kUnspecifiedError;
    case agent::kJobTargetInUse:
      utils::logDebug(kLog, function, "Target '%s' is in update state at this moment", target);
      return cim::kTargetInUse;
    case agent::kJobStartFailed:
      utils::logDebug(kLog, function, "Failed to start job for '%s' ", target);
      return cim::kFailed;
    default:
      return method.create ? cim::kJobStarted : cim::kCompletedWithNoError;
  }
}

// A request whose arguments have been read.
struct Update {
  std::string uri;
  const agent::PathArgument& target;
  std::vector<std::uint16_t> installOptions;
  std::vector<std::string> installOptionsValues;
};

// Resolves the target to a port, has the job class check the image and create the job where the
// method does, and translates its answer. The job that was started is stored in `job`, unless that
// is null.
std::uint32_t processUpdate(const UpdateMethod& method, const Update& update,
                            core::CimInstance** job) {
  const Target target = resolveTarget(method, update.target);
  if (target.identity.empty()) {
    return target.refusal;
  }
  ConcreteJobFactory* cimclass =
      ConcreteJobFactory::hasInstance() ? ConcreteJobFactory::getInstance() : nullptr;
  // The condition is part of the message that clients see, and so stays to the letter.
  ORVEX_ASSERT(kLog, cimclass != NULL);
  core::CimInstance* created = nullptr;
  std::int32_t result = 0;
  try {
    result = cimclass->verifyOrCreateNewJob(target.identity, update.uri, update.installOptions,
                                            update.installOptionsValues, created, method.create);
  } catch (...) {
    // The job class answers refusals by numbers; what it throws is a want of memory.
    utils::logDebug(kLog, method.function, "Allocation error occured for '%s'",
                    update.target.text.c_str());
    return cim::kNotEnoughMemory;
  }
  if (method.create) {
    utils::logDebug(kLog, method.function, "Creation of new job returns: %d", result);
  } else {
    utils::logDebug(kLog, method.function, "Verification of image returns: %d", result);
  }
  const cim::InstallReturn code = translate(method, result, update.target.text);
  if (code == cim::kJobStarted && job != nullptr) {
    *job = created;
  }
  return code;
}

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
  const UpdateMethod& method = kInstallFromSoftwareIdentity;
  const utils::TimeStamp timeStamp("InstallFromSoftwareIdentity");
  const agent::Arguments arguments(in);
  const auto& options = arguments.expect<core::CimPropertyUint16_arr>("InstallOptions");
  const auto& values = arguments.expect<core::CimPropertyString_arr>("InstallOptionsValues");
  const auto& source = arguments.expect<core::CimPropertyRef>("Source");
  const auto& target = arguments.expect<core::CimPropertyRef>("Target");
  const auto& collection = arguments.expect<core::CimPropertyRef>("Collection");
  if (!isForTarget(method, source, target, collection)) {
    return cim::kCollectionNotSupported;
  }
  agent::expectValues({&options, &source, &target});
  const agent::PathArgument sourcePath(source);
  const agent::PathArgument targetPath(target);
  utils::logDebug(kLog, method.function, "Starting arguments verification success");
  // The identity says which image types it holds, so a request may not choose among them.
  if (!agent::areOptionsSupported(options.getValue()) ||
      cim::hasOption(options.getValue(), cim::kTargetTypes)) {
    utils::logDebug(kLog, method.function, "One of value of InstallOptions value is not supported");
    return cim::kInvalidParameter;
  }
  const std::optional<std::string> uri = findUri(method, sourcePath);
  if (!uri) {
    return cim::kInvalidParameter;
  }
  return processUpdate(method, {*uri, targetPath, options.getValue(), values.getValue()}, job);
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
  const agent::PathArgument targetPath(target);
  if (!agent::areOptionsSupported(options.getValue())) {
    return cim::kInvalidParameter;
  }
  return processUpdate(kInstallFromUri,
                       {uri.getValue(), targetPath, options.getValue(), values.getValue()}, job);
}

std::uint32_t Orvex_SoftwareInstallationService::CheckSoftwareIdentity(core::CimPropertyList* in,
                                                                       core::CimPropertyList* out,
                                                                       core::CimInstance** job) {
  const UpdateMethod& method = kCheckSoftwareIdentity;
  const utils::TimeStamp timeStamp("CheckSoftwareIdentity");
  const agent::Arguments inputs(in);
  const auto& source = inputs.expect<core::CimPropertyRef>("Source");
  const auto& target = inputs.expect<core::CimPropertyRef>("Target");
  const auto& collection = inputs.expect<core::CimPropertyRef>("Collection");
  auto& characteristics =
      agent::Arguments(out).expect<core::CimPropertyUint16_arr>("InstallCharacteristics");
  if (!isForTarget(method, source, target, collection)) {
    return cim::kCollectionNotSupported;
  }
  agent::expectValues({&source, &target});
  const agent::PathArgument sourcePath(source);
  const agent::PathArgument targetPath(target);
  utils::logDebug(kLog, method.function, "Starting arguments verification success");
  if (!characteristics.getValue().empty()) {
    utils::logDebug(kLog, method.function,
                    "InstallCharacterisitcs argument is an output method's argument. Any input "
                    "value is not supported.");
    return cim::kInvalidParameter;
  }
  const std::optional<std::string> uri = findUri(method, sourcePath);
  if (!uri) {
    return cim::kInvalidParameter;
  }
  const std::uint32_t code = processUpdate(method, {*uri, targetPath, {}, {}}, job);
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
