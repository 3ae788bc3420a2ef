#include "agent/Orvex_ConcreteJob.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Utils/Assert.h"
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
