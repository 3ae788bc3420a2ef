#include "agent/InstallSteps.h"

#include <algorithm>
#include <optional>

#include "Utils/Assert.h"
#include "agent/ConcreteJobFactory.h"
#include "agent/InstallOptions.h"
#include "core/CimBroker.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"

namespace install {
namespace {

constexpr utils::LogSource kLog{"Orvex_SoftwareInstallationService"};

constexpr InstallOption kUnsupportedOptions[] = {
    kDeferTargetReset,   kInstall, kRepair, kReboot, kPassword, kUninstall, kLogOption, kSilentMode,
    kAdministrativeMode,
};

struct ResultReturn {
  std::int32_t result;
  std::string_view record;
  cim::InstallReturn returnCode;
};

// What each answer of the job class is translated into. An answer that is not here is a success.
constexpr ResultReturn kResultReturns[] = {
    {kJobInvalidParameter, "Job creation returned Invalid Parameter for '%s'",
     cim::kInvalidParameter},
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

// Returns `text` with its conversion replaced by the value.
std::string fillIn(std::string_view text, std::string_view conversion, const std::string& value) {
  std::string filled(text);
  const std::size_t place = filled.find(conversion);
  return place != std::string::npos ? filled.replace(place, conversion.size(), value) : filled;
}

// One call: the target that its records name, and how they are written.
class Call {
 public:
  Call(const Update& update, const Records& records) : m_update(update), m_records(records) {}

  std::uint32_t run(core::CimInstance** job) const;

 private:
  struct Target {
    std::string identity;
    std::optional<cim::InstallReturn> refusal;
  };

  void log(std::string_view text) const {
    utils::logDebug(kLog, m_records.function, "%s",
                    fillIn(text, "%s", m_update.targetPath).c_str());
  }

  Target resolveTarget() const;
  std::uint32_t translate(std::int32_t result, core::CimInstance* created,
                          core::CimInstance** job) const;

  const Update& m_update;
  const Records& m_records;
};

// Returns the identity of the controller's first port, empty when it has none.
std::string getFirstPort(core::CimInstance& instance) {
  const auto* controller = dynamic_cast<Orvex_PortController*>(&instance);
  if (controller != nullptr) {
    for (core::CimInstance* candidate :
         core::GetCimBroker().getInstances(Orvex_EthernetPort::kClassName)) {
      const auto* port = dynamic_cast<Orvex_EthernetPort*>(candidate);
      if (port != nullptr && controller->ownsPort(*port)) {
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

Call::Target Call::resolveTarget() const {
  core::CimInstance* instance =
      core::GetCimBroker().getInstanceByPath(core::CimPath(m_update.targetPath));
  if (instance == nullptr) {
    log(m_records.targetNotFound);
    return {{}, cim::kInvalidParameter};
  }
  const std::string className = instance->getClassName();
  const auto* targetClass =
      std::find_if(std::begin(kTargetClasses), std::end(kTargetClasses),
                   [&](const TargetClass& candidate) { return candidate.name == className; });
  if (targetClass == std::end(kTargetClasses)) {
    log("Firmware Update does not support target '%s'");
    return {{}, cim::kNotApplicableToTarget};
  }
  std::string identity = targetClass->getIdentity(*instance);
  if (identity.empty()) {
    log("Firmware Update does not support instance '%s'");
    return {{}, cim::kInvalidParameter};
  }
  return {std::move(identity), std::nullopt};
}

std::uint32_t Call::translate(std::int32_t result, core::CimInstance* created,
                              core::CimInstance** job) const {
  for (const ResultReturn& entry : kResultReturns) {
    if (entry.result == result) {
      log(entry.record);
      return entry.returnCode;
    }
  }
  if (job != nullptr) {
    *job = created;
  }
  return cim::kJobStarted;
}

std::uint32_t Call::run(core::CimInstance** job) const {
  const Target target = resolveTarget();
  if (target.refusal) {
    return *target.refusal;
  }
  ConcreteJobFactory* cimclass =
      ConcreteJobFactory::hasInstance() ? ConcreteJobFactory::getInstance() : nullptr;
  ORVEX_ASSERT(kLog, cimclass != NULL);
  core::CimInstance* created = nullptr;
  std::int32_t result = 0;
  try {
    result = cimclass->verifyOrCreateNewJob(target.identity, m_update.uri, m_update.installOptions,
                                            m_update.installOptionsValues, created, true);
    utils::logDebug(kLog, m_records.function, "%s",
                    fillIn(m_records.jobResult, "%d", std::to_string(result)).c_str());
  } catch (...) {
    // The job class answers refusals by numbers; what it throws is a want of memory.
    log("Allocation error occured for '%s'");
    return cim::kNotEnoughMemory;
  }
  return translate(result, created, job);
}

}  // namespace

const Records kInstallFromUriRecords = {
    "Orvex_SoftwareInstallationService::InstallFromURI",
    "Firmware Update cannot find instance '%s'",
    "Creation of new job returns: %d",
};

void expectValue(const core::CimProperty& argument) {
  if (argument.isNull()) {
    throw utils::EUnspecifiedError(
        utils::format("%s argument is set to NULL. It is not allowed", argument.getName().c_str()));
  }
}

bool areOptionsSupported(const std::vector<std::uint16_t>& options) {
  return hasOption(options, kUpdate) &&
         std::none_of(std::begin(kUnsupportedOptions), std::end(kUnsupportedOptions),
                      [&options](InstallOption option) { return hasOption(options, option); });
}

std::uint32_t updateTarget(const Update& update, const Records& records, core::CimInstance** job) {
  return Call(update, records).run(job);
}

}  // namespace install
