#include "agent/Orvex_ConcreteJob.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "Os/Files.h"
#include "Os/QuorvelConfig.h"
#include "Os/Uri.h"
#include "Utils/Assert.h"
#include "Utils/Conversions.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "agent/JobErrors.h"
#include "cim/InstallOptions.h"
#include "cim/MethodSignatures.h"
#include "cim/OperationalStatus.h"
#include "midapi/MidApi.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ConcreteJob"};

constexpr std::uint64_t kTimeBeforeRemoval = 300'000'000;  // microseconds

// Which states end a job. Killed and Terminated do not: only the states that a job reaches by
// itself count.
struct StateEnd {
  cim::JobState state;
  bool isEnd;
};
constexpr StateEnd kStateEnds[] = {
    {cim::JobState::New, false},          {cim::JobState::Starting, false},
    {cim::JobState::Running, false},      {cim::JobState::Suspended, false},
    {cim::JobState::ShuttingDown, true},  {cim::JobState::Completed, true},
    {cim::JobState::Terminated, false},   {cim::JobState::Killed, false},
    {cim::JobState::Exception, true},     {cim::JobState::Service, false},
    {cim::JobState::QueryPending, false},
};

// Returns the argument, null when it is missing, NULL or of another type.
template <class Property>
const Property* findArgument(core::CimPropertyList* in, const char* name) {
  const auto* argument = in != nullptr ? dynamic_cast<const Property*>(in->get(name)) : nullptr;
  return argument != nullptr && !argument->isNull() ? argument : nullptr;
}

}  // namespace

Orvex_ConcreteJob::Orvex_ConcreteJob(const std::string& target, std::uint32_t number,
                                     const std::string& uri,
                                     const std::vector<std::uint16_t>& installOptions,
                                     const std::vector<std::string>& installOptionsValues,
                                     platform::Clock& clock)
    : Orvex_ConcreteJob(target, number, clock, [&] {
        return agent::checkAndVerifyImage(target, uri, installOptions, installOptionsValues);
      }) {}

Orvex_ConcreteJob::Orvex_ConcreteJob(const std::string& target, std::uint32_t number,
                                     agent::VerifiedImage image, platform::Clock& clock)
    : Orvex_ConcreteJob(target, number, clock, [&image] { return std::move(image); }) {}

Orvex_ConcreteJob::Orvex_ConcreteJob(const std::string& target, std::uint32_t number,
                                     platform::Clock& clock, const ImageSource& image)
    : m_target(target),
      m_number(number),
      m_clock(clock),
      m_image(image()),
      m_myThread(std::make_unique<JobThread>(this, clock)) {
  m_report.elapsed = utils::Datetime::elapsedSince(m_submitted);
  addMethod("RequestStateChange",
            static_cast<Method>(&Orvex_ConcreteJob::invokeRequestStateChange));
}

Orvex_ConcreteJob::~Orvex_ConcreteJob() {
  // The thread uses the other members until it has ended.
  m_myThread.reset();
}

void Orvex_ConcreteJob::setPropertyValues() {
  Caption.setValue(utils::format("Firmware Update Job %d", static_cast<int>(m_number)));
  Description.setValue(Caption.getValue());
  Name.setValue(Caption.getValue());
  InstanceID.setValue("Orvex:" + getInstanceId());
  core::markKeys(*this);
  OperationalStatus.clear();
  OperationalStatus.addValue(cim::kOperationalStatusOk);
  JobRunTimes.setValue(1);
  Priority.setValue(0);
  DeleteOnCompletion.setValue(false);
  TimeBeforeRemoval.setValue(utils::Datetime(kTimeBeforeRemoval));
  StartTime.setValue(m_submitted);
  // The state first: a job that ends meanwhile must not show its end with a progress of before.
  const Report report = getReport();
  JobState.setValue(static_cast<std::uint16_t>(report.state));
  ElapsedTime.setValue(report.elapsed);
  ErrorCode.setValue(report.errorCode);
  ErrorDescription.setValue(report.errorText);
  TimeOfLastStateChange.setValue(report.lastStateChange);
  PercentComplete.setValue(static_cast<std::uint16_t>(getPercentComplete()));
  // Nothing is known of these; a value that somebody set does not stay.
  for (core::CimProperty* property :
       std::initializer_list<core::CimProperty*>{&ElementName,
                                                 &Generation,
                                                 &InstallDate,
                                                 &StatusDescriptions,
                                                 &Status,
                                                 &HealthState,
                                                 &PrimaryStatus,
                                                 &DetailedStatus,
                                                 &OperatingStatus,
                                                 &CommunicationStatus,
                                                 &JobStatus,
                                                 &TimeSubmitted,
                                                 &ScheduledStartTime,
                                                 &RunMonth,
                                                 &RunDay,
                                                 &RunDayOfWeek,
                                                 &RunStartInterval,
                                                 &LocalOrUtcTime,
                                                 &UntilTime,
                                                 &Notify,
                                                 &Owner,
                                                 &RecoveryAction,
                                                 &OtherRecoveryAction}) {
    property->setNull();
  }
}

bool Orvex_ConcreteJob::threadControl(std::int32_t command, std::int32_t timeout) {
  constexpr const char* kFunction = "Orvex_ConcreteJob::threadControl";
  const utils::ScopedLock lock(m_threadMutex);
  utils::logDebug(kLog, kFunction, "New threadControl %d", command);
  if (command == kStartThread) {
    // The condition is part of the message that clients see, and so stays to the letter.
    ORVEX_ASSERT(kLog, m_myThread != NULL);
    try {
      m_myThread->launch();
    } catch (...) {
      utils::logError(kLog, kFunction, "Thread start error");
      return false;
    }
    return true;
  }
  if (command == kWaitForThread) {
    ORVEX_ASSERT(kLog, m_myThread != NULL);
    m_myThread->requestStop();
    return agent::waitForFlag(m_myThread->getDone(), timeout, m_clock) >= 0;
  }
  const bool isDeleted =
      command == kDeleteThread && m_myThread != nullptr && m_myThread->getDone().isSet();
  if (isDeleted) {
    utils::logDebug(kLog, kFunction, "Deleting JobThread %p for %s",
                    static_cast<void*>(m_myThread.get()), m_target.c_str());
    m_myThread.reset();
  }
  utils::logDebug(kLog, kFunction, "threadControl %d - DONE", command);
  return isDeleted;
}

std::uint32_t Orvex_ConcreteJob::invokeRequestStateChange(core::CimPropertyList* in,
                                                          core::CimPropertyList* /*out*/,
                                                          core::CimInstance** /*job*/) {
  const auto* requestedState = findArgument<core::CimPropertyUint16>(in, "RequestedState");
  const auto* timeout = findArgument<core::CimPropertyDatetime>(in, "TimeoutPeriod");
  if (requestedState == nullptr) {
    utils::logError(kLog, "Orvex_ConcreteJob::invokeRequestStateChange",
                    "RequestedState is missing");
    return cim::kStateChangeInvalid;
  }
  return requestStateChange(requestedState->getValue(),
                            timeout != nullptr ? timeout->getValue() : utils::Datetime(0));
}

std::uint32_t Orvex_ConcreteJob::requestStateChange(std::uint16_t requestedState,
                                                    const utils::Datetime& /*timeout*/) {
  constexpr const char* kFunction = "Orvex_ConcreteJob::requestStateChange";
  utils::logDebug(kLog, kFunction, "New request %d", requestedState);
  if (requestedState != kRequestStart) {
    utils::logError(kLog, kFunction, "Not supported new state %d", requestedState);
    return cim::kStateChangeInvalid;
  }
  if (getJobState() != cim::JobState::New) {
    utils::logError(kLog, kFunction, "Cannot start job that is not in 'NEW' state");
    return cim::kInvalidStateTransition;
  }
  utils::logDebug(kLog, kFunction, "starting job");
  setJobState(cim::JobState::Starting);
  if (threadControl(kStartThread, 0)) {
    return cim::kStateChanged;
  }
  setJobState(cim::JobState::Exception);
  return cim::kStateChangeFailed;
}

void Orvex_ConcreteJob::setJobState(cim::JobState newState) noexcept {
  utils::logDebug(kLog, "Orvex_ConcreteJob::setJobState", "%d -> %d",
                  static_cast<int>(getJobState()), static_cast<int>(newState));
  const utils::ScopedLock lock(m_reportMutex);
  m_report.state = newState;
  m_report.lastStateChange.setToNow();
  if (newState == cim::JobState::Completed) {
    m_report.elapsed = utils::Datetime::elapsedSince(m_submitted);
  }
  for (const StateEnd& entry : kStateEnds) {
    if (entry.state == newState) {
      m_isFinished = entry.isEnd;
    }
  }
  if (m_isFinished) {
    // A swap: an assignment would keep the memory.
    std::vector<std::uint8_t>().swap(m_image.bytes);
    // The name goes whoever set it, so nothing is left for the reservation to clear.
    m_image.reservation.abandon();
    agent::clearTargetInProgress();
  }
}

cim::JobState Orvex_ConcreteJob::getJobState() const {
  const utils::ScopedLock lock(m_reportMutex);
  return m_report.state;
}

bool Orvex_ConcreteJob::isFinished() const {
  const utils::ScopedLock lock(m_reportMutex);
  return m_isFinished;
}

Orvex_ConcreteJob::Report Orvex_ConcreteJob::getReport() const {
  const utils::ScopedLock lock(m_reportMutex);
  return m_report;
}

void Orvex_ConcreteJob::setError(std::uint32_t code, const std::string& text) noexcept {
  constexpr std::uint32_t kLargest = std::numeric_limits<std::uint16_t>::max();
  const utils::ScopedLock lock(m_reportMutex);
  m_report.errorCode = static_cast<std::uint16_t>(std::min(code, kLargest));
  try {
    m_report.errorText =
        code > kLargest ? utils::format("%s (error %u)", text.c_str(), code) : text;
  } catch (const std::exception&) {
    m_report.errorText.clear();  // The code tells the truth without it.
  }
}

std::string Orvex_ConcreteJob::getInstanceId() const {
  return utils::format("FirmwareUpdate@Job#%d", static_cast<int>(m_number));
}

std::int32_t Orvex_ConcreteJob::getPercentComplete() {
  const cim::JobState state = getJobState();
  if (state == cim::JobState::Running) {
    m_percentComplete = static_cast<std::int32_t>(ma::getFlashImageUpdateProgress(m_target));
  } else if (state == cim::JobState::Completed || state == cim::JobState::Exception) {
    m_percentComplete = 100;
  }
  return m_percentComplete;
}

namespace agent {
namespace {

constexpr const char* kCheck = "Orvex_ConcreteJob::checkAndVerifyImage";
constexpr const char* kTypes = "Orvex_ConcreteJob::getTargetTypes";

TargetReservation reserveTarget(const std::string& target) {
  const std::string inProgress = getTargetInProgress();
  if (inProgress == target && !inProgress.empty()) {
    throw ETargetInUse(
        utils::format("Firmware update for %s is currently in progress", target.c_str()));
  }
  if (!inProgress.empty()) {
    throw EJobIsRunning(
        utils::format("Other job for %s is running at this moment", inProgress.c_str()));
  }
  return TargetReservation(target);
}

// The target is free before the refusal is told of: who reads that may ask again at once.
template <class Error>
[[noreturn]] void refuse(TargetReservation& reservation, const std::string& text) {
  reservation.release();
  throw Error(text);
}

os::FileContent readImageFile(const std::string& text, TargetReservation& reservation) {
  utils::logDebug(kLog, kCheck, "Checking URI : '%s' ", text.c_str());
  const utils::Uri uri(text);
  const std::string invalid = utils::format("URI: %s is invalid", text.c_str());
  if (!uri.isSupported()) {
    refuse<EInvalidUri>(reservation, invalid);
  }
  if (!uri.exists()) {
    refuse<EUriDoesNotExist>(reservation, invalid);
  }
  const std::string path = uri.getPath();
  const std::string readError =
      utils::format("Image read error: %s (%s)", text.c_str(), path.c_str());
  const std::int32_t size = os::getFileSize(path);
  const std::string excess =
      utils::QuorvelConfig::getInstance()->findSizeExcess(static_cast<std::uint32_t>(size));
  if (!excess.empty()) {
    refuse<EImageReadError>(reservation, readError + ": " + excess);
  }
  os::FileContent file = os::readContent(path, size);
  if (file.size != size) {
    const bool isInUse = os::isInUse(path);
    refuse<EImageReadError>(reservation,
                            isInUse ? readError + ": " + utils::refusal::kFileInUse : readError);
  }
  return file;
}

[[noreturn]] void refuseDowngrade(TargetReservation& reservation, const std::string& uri) {
  refuse<EDowngradeDetected>(reservation,
                             utils::format("%s for %s. Try to use FORCE_INSTALL option.",
                                           utils::refusal::kDowngrade, uri.c_str()));
}

// A change of image types needs the force option and the configuration's consent.
void acceptOtherTypes(const std::string& uri, bool isForced, TargetReservation& reservation) {
  const bool isEnabled = utils::QuorvelConfig::getInstance()->getDowngradeEnable();
  utils::logDebug(kLog, kCheck, "DowngradeEnable: %d, ForceInstall: %d", isEnabled, isForced);
  if (isEnabled && isForced) {
    return;
  }
  if (isEnabled) {
    refuseDowngrade(reservation, uri);
  }
  refuse<EDowngradeDetected>(
      reservation,
      utils::format("The selected flash image cannot be used because it does not contain the %s. "
                    "Please select a flash file with matching image types.",
                    utils::refusal::kTypesDiffer));
}

// Clients get the status alone; which of two versions is older, or which device a file is for, is
// for who reads the log.
void logReason(const std::string& target, const os::FileContent& file,
               const std::vector<utils::FirmwareType>& types) {
  const std::string reason =
      ma::explainFlashImage(target, file.bytes.get(), static_cast<std::uint32_t>(file.size), types);
  if (!reason.empty()) {
    utils::logError(kLog, kCheck, "%s", reason.c_str());
  }
}

// Returns for a status that lets the update go on, throws for any other.
void actOnStatus(ma::PrepareStatus status, const std::string& target, const std::string& uri,
                 bool isForced, TargetReservation& reservation) {
  switch (status) {
    case ma::PrepareStatus::Ok:
      return;
    case ma::PrepareStatus::InvalidImage:
      refuse<utils::EInvalidParameter>(
          reservation, utils::format("%s %s", utils::refusal::kInvalidParameter, uri.c_str()));
    case ma::PrepareStatus::NotForAdapter:
      refuse<EAdapterNotSupported>(
          reservation,
          utils::format("Image %s is not supported for adapter %s", uri.c_str(), target.c_str()));
    case ma::PrepareStatus::Downgrade:
      if (!isForced) {
        refuseDowngrade(reservation, uri);
      }
      return;
    case ma::PrepareStatus::TypesDiffer:
      return acceptOtherTypes(uri, isForced, reservation);
    case ma::PrepareStatus::NotUpdatable:
      refuse<ENotApplicableForTarget>(reservation,
                                      utils::format("Not applicable for %s", uri.c_str()));
    case ma::PrepareStatus::InternalFault:
      refuse<utils::EUnspecifiedError>(
          reservation, utils::format("Unspecified error occurred for %s", uri.c_str()));
  }
}

std::optional<utils::FirmwareType> findType(const std::string& name) {
  for (std::size_t index = 0; index < utils::kFirmwareTypeNames.size(); ++index) {
    const std::string candidate(utils::kFirmwareTypeNames[index]);
    utils::logDebug(kLog, kTypes, "index: %d", static_cast<int>(index));
    utils::logDebug(kLog, kTypes, "compare with %s", candidate.c_str());
    if (candidate == name) {
      utils::logDebug(kLog, kTypes, "added new image type - #%d", static_cast<int>(index));
      return static_cast<utils::FirmwareType>(index);
    }
  }
  return std::nullopt;
}

void addNamedTypes(const std::string& names, std::vector<utils::FirmwareType>& types,
                   TargetReservation& reservation) {
  for (const std::string& piece : utils::split(names, '+', utils::kNoQuote)) {
    const std::string name = utils::trim(piece);
    utils::logDebug(kLog, kTypes, "TeargetType: %s", name.c_str());
    const std::optional<utils::FirmwareType> type = findType(name);
    if (!type) {
      refuse<utils::EInvalidParameter>(
          reservation, utils::format("%s TargetTypes. %s %s", utils::refusal::kInvalidParameter,
                                     name.c_str(), utils::refusal::kUnknownType));
    }
    types.push_back(*type);
  }
}

std::vector<utils::FirmwareType> readTargetTypes(
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues, TargetReservation& reservation) {
  utils::logDebug(kLog, kTypes, "InstallOptions Size: %d", static_cast<int>(installOptions.size()));
  utils::logDebug(kLog, kTypes, "InstallOptionsValues Size: %d",
                  static_cast<int>(installOptionsValues.size()));
  std::vector<utils::FirmwareType> types;
  for (std::size_t position = 0; position < installOptions.size(); ++position) {
    if (installOptions[position] != cim::kTargetTypes) {
      continue;
    }
    utils::logDebug(kLog, kTypes, "InstallOptions contains TargetTypes on %d position",
                    static_cast<int>(position));
    if (position >= installOptionsValues.size()) {
      utils::logDebug(kLog, kTypes, "No TargetTypes detected in values");
      return {};
    }
    utils::logDebug(kLog, kTypes, "InstallOptionsValues contains %d elements",
                    static_cast<int>(installOptionsValues.size()));
    addNamedTypes(installOptionsValues[position], types, reservation);
    if (types.empty()) {
      utils::logDebug(kLog, kTypes, "Values does not contain any TargetTypes");
      return {};
    }
  }
  for (std::size_t index = 0; index < types.size(); ++index) {
    utils::logDebug(kLog, kTypes, "Return result[%d]=%d", static_cast<int>(index),
                    static_cast<int>(types[index]));
  }
  if (types.empty()) {
    utils::logDebug(kLog, kTypes, "No TargetTypes defined");
  }
  return types;
}

}  // namespace

VerifiedImage checkAndVerifyImage(const std::string& target, const std::string& uri,
                                  const std::vector<std::uint16_t>& installOptions,
                                  const std::vector<std::string>& installOptionsValues) {
  VerifiedImage image;
  image.reservation = reserveTarget(target);
  const os::FileContent file = readImageFile(uri, image.reservation);
  const auto fileSize = static_cast<std::uint32_t>(file.size);
  // What is prepared is the file or a selection of its images, and so never larger.
  image.bytes.resize(fileSize);
  image.targetTypes = readTargetTypes(installOptions, installOptionsValues, image.reservation);

  utils::logDebug(kLog, kCheck, "Start preparing the image");
  std::uint32_t size = fileSize;
  const ma::PrepareStatus status = ma::prepareFlashImage(
      target, file.bytes.get(), fileSize, image.bytes.data(), size, image.targetTypes);
  utils::logDebug(kLog, kCheck, "Image prepared %d", static_cast<int>(status));
  if (status != ma::PrepareStatus::Ok) {
    logReason(target, file, image.targetTypes);
  }
  actOnStatus(status, target, uri, cim::hasOption(installOptions, cim::kForceInstallation),
              image.reservation);
  image.bytes.resize(size);
  return image;
}

std::vector<utils::FirmwareType> getTargetTypes(
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues) {
  TargetReservation none;
  return readTargetTypes(installOptions, installOptionsValues, none);
}

}  // namespace agent
