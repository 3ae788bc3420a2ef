#include "agent/InstallSteps.h"

#include <algorithm>
#include <new>
#include <utility>

#include "Utils/Assert.h"
#include "agent/ConcreteJobFactory.h"
#include "agent/Instances.h"
#include "cim/InstallOptions.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentity.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace agent {
namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationService"};

constexpr cim::InstallOption kUnsupportedOptions[] = {
    cim::kDeferTargetReset, cim::kInstall,    cim::kRepair,
    cim::kReboot,           cim::kPassword,   cim::kUninstall,
    cim::kLogOption,        cim::kSilentMode, cim::kAdministrativeMode,
};

struct ResultReturn {
  std::int32_t result;
  std::string_view record;
  cim::InstallReturn returnCode;
};

// What each answer of the job class is translated into. An answer that is not here is a success.
constexpr ResultReturn kResultReturns[] = {
    {kJobInvalidParameter, {}, cim::kInvalidParameter},  // the method has the record
    {kJobAdapterNotSupported, "Target is not supported by service for '%s'",
     cim::kUnsupportedTargetType},
    {kJobDowngradeDetected,
     "Downgrade is not supported by service for '%s'. Execute with FORCE INSTALL flag.",
     cim::kDowngradeNotSupported},
    {kJobUnspecifiedError, "Unspecified Error for '%s'", cim::kUnspecifiedError},
    {kJobNotApplicable, "Not applicable for target for '%s' ", cim::kNotApplicableToTarget},
    {kJobInvalidUri, "Invalid URI for '%s'", cim::kInvalidParameter},
    {kJobUriDoesNotExist, "URI does not exists for '%s'", cim::kInvalidParameter},
    {kJobImageReadError, "Job cannot read the URI for '%s'", cim::kUnspecifiedError},
    {kJobOtherJobRunning, "Other job is in progress '%s'", cim::kUnspecifiedError},
    {kJobTargetInUse, "Target '%s' is in update state at this moment", cim::kTargetInUse},
    {kJobStartFailed, "Failed to start job for '%s' ", cim::kFailed},
};

// Returns `text` with its conversion replaced by the value. The records stand in tables, where the
// compiler cannot check them as formats against their arguments.
std::string fillIn(std::string_view text, std::string_view conversion, const std::string& value) {
  std::string filled(text);
  const std::size_t place = filled.find(conversion);
  return place != std::string::npos ? filled.replace(place, conversion.size(), value) : filled;
}

// A record must not decide what a method answers: one for which there is no memory is left out.
void logFilled(const Method& method, std::string_view text, std::string_view conversion,
               const std::string& value) noexcept {
  try {
    utils::logDebug(kLog, method.function, "%s", fillIn(text, conversion, value).c_str());
  } catch (const std::bad_alloc&) {
    utils::logDebug(kLog, method.function, "%s", value.c_str());
  }
}

void log(const Method& method, std::string_view text, const std::string& value) noexcept {
  logFilled(method, text, "%s", value);
}

void logNotFound(const Method& method, const std::string& path) {
  log(method, std::string(method.lookUp) + "Firmware Update cannot find instance '%s'", path);
}

void logNullStates(const Method& method, const core::CimProperty& source,
                   const core::CimProperty& target, const core::CimProperty& collection) {
  utils::logDebug(kLog, method.function, "All arguments are defined");
  utils::logDebug(kLog, method.function, "Target:%d, Source:%d, Collection:%d", target.isNull(),
                  source.isNull(), collection.isNull());
}

// Returns the identity of the controller's first port, empty when it has none.
std::string getFirstPort(core::CimInstance& instance) {
  const auto* controller = dynamic_cast<Orvex_PortController*>(&instance);
  if (controller != nullptr) {
    for (const Orvex_EthernetPort* port : findInstancesOf<Orvex_EthernetPort>()) {
      if (controller->ownsPort(*port)) {
        return port->getIdentity();
      }
    }
  }
  return {};
}

std::string getPort(core::CimInstance& instance) {
  const auto* port = dynamic_cast<Orvex_EthernetPort*>(&instance);
  return port != nullptr ? port->getIdentity() : std::string();
}

struct TargetClass {
  std::string_view name;
  std::string (*getIdentity)(core::CimInstance& instance);
};

constexpr TargetClass kTargetClasses[] = {
    {Orvex_PortController::kClassName, getFirstPort},
    {Orvex_EthernetPort::kClassName, getPort},
};

struct Target {
  std::string identity;  // empty when it is refused
  cim::InstallReturn refusal = cim::kInvalidParameter;
};

Target resolveTarget(const Method& method, const std::string& path) {
  core::CimInstance* instance = core::GetCimBroker().getInstanceByPath(core::CimPath(path));
  if (instance == nullptr) {
    logNotFound(method, path);
    return {};
  }
  const std::string className = instance->getClassName();
  const auto* targetClass =
      std::find_if(std::begin(kTargetClasses), std::end(kTargetClasses),
                   [&](const TargetClass& candidate) { return candidate.name == className; });
  if (targetClass == std::end(kTargetClasses)) {
    log(method, "Firmware Update does not support target '%s'", path);
    return {{}, cim::kNotApplicableToTarget};
  }
  Target target{targetClass->getIdentity(*instance)};
  if (target.identity.empty()) {
    log(method, "Firmware Update does not support instance '%s'", path);
  }
  return target;
}

cim::InstallReturn translate(const Method& method, std::int32_t result,
                             const std::string& targetPath) {
  for (const ResultReturn& entry : kResultReturns) {
    if (entry.result == result) {
      log(method, entry.record.empty() ? method.invalidParameter : entry.record, targetPath);
      return entry.returnCode;
    }
  }
  return method.create ? cim::kJobStarted : cim::kCompletedWithNoError;
}

// Returns the URI of the resource of that file, empty when there is none; the last one counts.
std::string findResourceUri(const std::string& identity) {
  std::string uri;
  for (const auto* resource : findInstancesOf<Orvex_SoftwareIdentityResource>()) {
    if (resource->getFirmwareFileID() == identity) {
      uri = resource->AccessInfo.getValue();
    }
  }
  return uri;
}

std::string join(const std::vector<std::string>& texts, char separator) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += separator + text;
  }
  return joined.empty() ? joined : joined.substr(1);
}

}  // namespace

const Method kInstallFromUri = {
    "Orvex_SoftwareInstallationService::InstallFromURI",
    "",  // has no collection
    "",
    "Creation of new job returns: %d",
    "Job creation returned Invalid Parameter for '%s'",
    true,
};

const Method kInstallFromSoftwareIdentity = {
    "Orvex_SoftwareInstallationService::InstallFromSoftwareIdentity",
    "Target and Collection are defined",
    "",
    "Creation of new job returns: %d",
    "Job creation returned Invalid Parameter for '%s'",
    true,
};

const Method kCheckSoftwareIdentity = {
    "Orvex_SoftwareInstallationService::CheckSoftwareIdentity",
    "Both Target and Collection are defined",
    "Checking ",
    "Verification of image returns: %d",
    "Image verification returned Invalid Parameter for '%s'",
    false,
};

void expectValues(std::initializer_list<const core::CimProperty*> arguments) {
  for (const core::CimProperty* argument : arguments) {
    if (argument->isNull()) {
      throw utils::EUnspecifiedError(utils::format("%s argument is set to NULL. It is not allowed",
                                                   argument->getName().c_str()));
    }
  }
}

bool areOptionsSupported(const std::vector<std::uint16_t>& options) {
  return cim::hasOption(options, cim::kUpdate) &&
         std::none_of(
             std::begin(kUnsupportedOptions), std::end(kUnsupportedOptions),
             [&options](cim::InstallOption option) { return cim::hasOption(options, option); });
}

bool isForTarget(const Method& method, const core::CimProperty& source,
                 const core::CimProperty& target, const core::CimProperty& collection) {
  logNullStates(method, source, target, collection);
  if (!target.isNull() && !collection.isNull()) {
    throw utils::EUnspecifiedError(method.bothTargets);
  }
  if (target.isNull() && collection.isNull()) {
    throw utils::EUnspecifiedError("Neither Target nor Collection are defined");
  }
  return !target.isNull();
}

std::optional<std::string> findUri(const Method& method, const std::string& sourcePath) {
  core::CimInstance* instance = core::GetCimBroker().getInstanceByPath(core::CimPath(sourcePath));
  if (instance == nullptr) {
    logNotFound(method, sourcePath);
    return std::nullopt;
  }
  const std::string notSupported =
      std::string(method.lookUp) + "Firmware Update does not support source '%s'";
  const auto* source = dynamic_cast<Orvex_SoftwareIdentity*>(instance);
  if (source == nullptr || instance->getClassName() != Orvex_SoftwareIdentity::kClassName) {
    log(method, notSupported, sourcePath);
    return std::nullopt;
  }
  if (source->getImageKind() != Orvex_SoftwareIdentity::kFirmwareImage) {
    log(method, notSupported + ". It is not a proper Firmware Image.", sourcePath);
    return std::nullopt;
  }
  // Copied: the source may not outlive the broker's next question to its agent.
  const std::string identity = source->getIdentity();
  const std::string targetTypes = join(source->TargetTypes.getValue(), '+');
  const bool hasTargetTypes = !source->TargetTypes.getValue().empty();
  std::string uri = findResourceUri(identity);
  if (uri.empty()) {
    log(method, "Could not obtain URI from the SoftwareIdentityResource (%s)", identity);
    return std::nullopt;
  }
  log(method, "URI is: %s", uri);
  if (!hasTargetTypes) {
    log(method, "Source '%s' does not contain any TargetTypes", sourcePath);
    return std::nullopt;
  }
  log(method, "TargetTypes are: %s", targetTypes);
  return uri;
}

std::uint32_t processUpdate(const Method& method, const Update& update, core::CimInstance** job) {
  const Target target = resolveTarget(method, update.targetPath);
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
    log(method, "Allocation error occured for '%s'", update.targetPath);
    return cim::kNotEnoughMemory;
  }
  logFilled(method, method.jobResult, "%d", std::to_string(result));
  const cim::InstallReturn code = translate(method, result, update.targetPath);
  if (code == cim::kJobStarted && job != nullptr) {
    *job = created;
  }
  return code;
}

}  // namespace agent
