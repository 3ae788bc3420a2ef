#include "agent/Orvex_ConcreteJobClass.h"

#include <memory>

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

}  // namespace

Orvex_ConcreteJobClass::Orvex_ConcreteJobClass(platform::Clock& clock)
    : InstanceProvider(Orvex_ConcreteJob::kClassName, {kLog, kGetInstances}), m_clock(clock) {}

Orvex_ConcreteJobClass::~Orvex_ConcreteJobClass() = default;

std::int32_t Orvex_ConcreteJobClass::verifyOrCreateNewJob(
    const std::string& target, const std::string& uri,
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues, core::CimInstance*& job, bool create) {
  job = nullptr;
  try {
    if (create) {
      return createNewJob(target, uri, installOptions, installOptionsValues, job);
    }
    agent::checkAndVerifyImage(target, uri, installOptions, installOptionsValues)
        .reservation.abandon();
    return agent::kJobAccepted;
  } catch (const std::exception& error) {
    utils::logError(kLog, kVerifyOrCreate, "Exception: '%s'", error.what());
    return toResult(error);
  }
}

void Orvex_ConcreteJobClass::refresh() {
  core::InstanceList::Iterator cursor = instances().iterator();
  utils::logDebug(kLog, kGetInstances, "All jobs: %d", static_cast<int>(cursor.count()));
  for (core::CimInstance* instance = cursor.first(); instance != nullptr;
       instance = cursor.next()) {
    auto* job = static_cast<Orvex_ConcreteJob*>(instance);
    if (utils::isDebugLogged()) {
      utils::logDebug(kLog, kGetInstances, "Refreshing job: %s", job->getInstanceId().c_str());
    }
    try {
      job->threadControl(Orvex_ConcreteJob::kDeleteThread, 0);
    } catch (const std::exception&) {
      utils::logDebug(kLog, kGetInstances, "Exception happened");
    }
    job->setPropertyValues();
  }
}

std::int32_t Orvex_ConcreteJobClass::createNewJob(
    const std::string& target, const std::string& uri,
    const std::vector<std::uint16_t>& installOptions,
    const std::vector<std::string>& installOptionsValues, core::CimInstance*& job) {
  utils::logDebug(kLog, "Orvex_ConcreteJobClass::createNewJob",
                  "Creating new job for %s with id #%d", target.c_str(),
                  static_cast<int>(m_nextJobNumber));
  auto created = std::make_unique<Orvex_ConcreteJob>(target, m_nextJobNumber, uri, installOptions,
                                                     installOptionsValues, m_clock);
  // Here, so that a refused request uses up no number.
  ++m_nextJobNumber;
  created->setPropertyValues();
  instances().add(created.get());
  // The list owns it from here on.
  Orvex_ConcreteJob* const newJob = created.release();
  const utils::Datetime timeout(utils::currentMicroseconds() + kStartTimeout);
  if (newJob->requestStateChange(Orvex_ConcreteJob::kRequestStart, timeout) != cim::kStateChanged) {
    instances().remove(newJob);
    delete newJob;
    return agent::kJobStartFailed;
  }
  job = newJob;
  return agent::kJobAccepted;
}
