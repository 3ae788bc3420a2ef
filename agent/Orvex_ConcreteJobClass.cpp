#include "agent/Orvex_ConcreteJobClass.h"

#include <utility>

#include "Utils/Clock.h"
#include "agent/ImageVerification.h"
#include "agent/JobErrors.h"
#include "agent/Orvex_ConcreteJob.h"
#include "cim/MethodSignatures.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ConcreteJobClass"};
constexpr const char* kGetInstances = "ConcreteJob::getInstances";
constexpr const char* kVerifyOrCreate = "Orvex_ConcreteJobClass::verifyOrCreateNewJob";
// How far in the future the time is that a job is given to start in; the job makes no use of it.
constexpr std::uint64_t kStartTimeout = 100;  // microseconds

template <class Error>
bool isA(const std::exception& error) {
  return dynamic_cast<const Error*>(&error) != nullptr;
}

struct ErrorResult {
  bool (*matches)(const std::exception& error);
  agent::JobResult result;
};

// What each refusal is answered by; the first match counts, anything else is unspecified.
constexpr ErrorResult kErrorResults[] = {
    {isA<EJobIsRunning>, agent::kJobOtherJobRunning},
    {isA<ETargetInUse>, agent::kJobTargetInUse},
    {isA<EInvalidUri>, agent::kJobInvalidUri},
    {isA<EUriDoesNotExist>, agent::kJobUriDoesNotExist},
    {isA<EImageReadError>, agent::kJobImageReadError},
    {isA<EAdapterNotSupported>, agent::kJobAdapterNotSupported},
    {isA<utils::EInvalidParameter>, agent::kJobInvalidParameter},
    {isA<utils::EUnspecifiedError>, agent::kJobUnspecifiedError},
    {isA<EDowngradeDetected>, agent::kJobDowngradeDetected},
    {isA<ENotApplicableForTarget>, agent::kJobNotApplicable},
};

agent::JobResult toResult(const std::exception& error) {
  for (const ErrorResult& entry : kErrorResults) {
    if (entry.matches(error)) {
      return entry.result;
    }
  }
  return agent::kJobUnspecifiedError;
}

bool start(Orvex_ConcreteJob& job) {
  const utils::Datetime timeout(utils::currentMicroseconds() + kStartTimeout);
  try {
    return job.requestStateChange(Orvex_ConcreteJob::kRequestStart, timeout) == cim::kStateChanged;
  } catch (...) {
    return false;
  }
}

}  // namespace

Orvex_ConcreteJobClass::Orvex_ConcreteJobClass(platform::Clock& clock)
    : InstanceProvider(Orvex_ConcreteJob::kClassName, {kLog, kGetInstances}), m_clock(clock) {}

Orvex_ConcreteJobClass::~Orvex_ConcreteJobClass() = default;

std::int32_t Orvex_ConcreteJobClass::verifyOrCreateNewJob(
    const std::string& target, const std::string& uri,
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues, core::CimInstance*& job, bool create) {
  job = nullptr;
  m_unstartedJobs.tidyUp();
  std::unique_ptr<Orvex_ConcreteJob> created;
  try {
    if (create) {
      created = createNewJob(target, uri, installOptions, installOptionsValues);
    } else {
      agent::checkAndVerifyImage(target, uri, installOptions, installOptionsValues)
          .reservation.abandon();
    }
  } catch (const std::exception& error) {
    utils::logError(kLog, kVerifyOrCreate, "Exception: '%s'", error.what());
    return toResult(error);
  } catch (...) {
    utils::logError(kLog, kVerifyOrCreate, "Exception: '%s'", "unknown");
    return agent::kJobUnspecifiedError;
  }
  return create ? startNewJob(std::move(created), job) : agent::kJobAccepted;
}

void Orvex_ConcreteJobClass::refresh() {
  core::InstanceList::Iterator cursor = instances().iterator();
  m_unstartedJobs.tidyUp();
  utils::logDebug(kLog, kGetInstances, "All jobs: %d", static_cast<int>(cursor.count()));
  for (core::CimInstance* instance = cursor.first(); instance != nullptr;
       instance = cursor.next()) {
    auto* job = static_cast<Orvex_ConcreteJob*>(instance);
    if (utils::isDebugLogged()) {
      utils::logDebug(kLog, kGetInstances, "Refreshing job: %s", job->getInstanceId().c_str());
    }
    try {
      job->threadControl(Orvex_ConcreteJob::kDeleteThread, 0);
    } catch (...) {
      utils::logDebug(kLog, kGetInstances, "Exception happened");
    }
    job->setPropertyValues();
  }
}

std::unique_ptr<Orvex_ConcreteJob> Orvex_ConcreteJobClass::createNewJob(
    const std::string& target, const std::string& uri,
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues) {
  const std::uint32_t number = m_nextJobNumber.fetch_add(1);
  utils::logDebug(kLog, "Orvex_ConcreteJobClass::createNewJob",
                  "Creating new job for %s with id #%d", target.c_str(), static_cast<int>(number));
  try {
    return std::make_unique<Orvex_ConcreteJob>(target, number, uri, installOptions,
                                               installOptionsValues, m_clock);
  } catch (...) {
    // A refused request uses up no number, unless another has taken the next one meanwhile.
    std::uint32_t next = number + 1;
    m_nextJobNumber.compare_exchange_strong(next, number);
    throw;
  }
}

std::int32_t Orvex_ConcreteJobClass::startNewJob(std::unique_ptr<Orvex_ConcreteJob> created,
                                                 core::CimInstance*& job) {
  Orvex_ConcreteJob* const newJob = created.get();
  instances().add(newJob, [newJob] { newJob->setPropertyValues(); });
  if (!start(*newJob)) {
    withdraw(newJob);
    m_unstartedJobs.add(std::move(created));
    return agent::kJobStartFailed;
  }
  // The list owns it from here on.
  job = created.release();
  return agent::kJobAccepted;
}
