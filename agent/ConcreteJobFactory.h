// How the installation service reaches the job class without depending on it.

#ifndef ORVEX_AGENT_CONCRETEJOBFACTORY_H_
#define ORVEX_AGENT_CONCRETEJOBFACTORY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Utils/Singleton.h"
#include "core/CimInstance.h"

namespace agent {

// What verifyOrCreateNewJob() answers. Any other number is a success, too.
enum JobResult : std::int32_t {
  kJobAccepted = 0,
  kJobInvalidParameter = 1,
  kJobAdapterNotSupported = 2,
  kJobDowngradeDetected = 3,
  kJobUnspecifiedError = 4,
  kJobNotApplicable = 5,
  kJobInvalidUri = 100,
  kJobUriDoesNotExist = 101,
  kJobImageReadError = 103,
  kJobOtherJobRunning = 104,
  kJobTargetInUse = 105,
  kJobStartFailed = 106,
};

}  // namespace agent

class ConcreteJobFactory : public utils::Singleton<ConcreteJobFactory> {
 public:
  static constexpr const char* kTypeName = "ConcreteJobFactory";

  // Checks whether the image that `uri` names can be installed on the adapter `target`, and with
  // `create` makes and starts the job that does it. Returns an agent::JobResult; the job, which the
  // factory owns, comes back in `job` when one was created and started, else null. A check that
  // passes leaves the target in progress for the life of the process.
  [[nodiscard]] virtual std::int32_t verifyOrCreateNewJob(
      const std::string& target, const std::string& uri,
      const std::vector<std::uint16_t>& installOptions,
      const std::vector<std::string>& installOptionsValues, core::CimInstance*& job,
      bool create) = 0;
};

#endif  // ORVEX_AGENT_CONCRETEJOBFACTORY_H_
