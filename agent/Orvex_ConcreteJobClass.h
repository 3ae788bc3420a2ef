// The provider of the jobs, and the one place where an update request becomes a job.

#ifndef ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_
#define ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "agent/ConcreteJobFactory.h"
#include "agent/UnstartedJobs.h"
#include "core/InstanceProvider.h"
#include "platform/Clock.h"

class Orvex_ConcreteJobClass : public core::InstanceProvider, public ConcreteJobFactory {
 public:
  // The jobs wait by `clock`, which outlives them.
  explicit Orvex_ConcreteJobClass(platform::Clock& clock = platform::steadyClock());
  ~Orvex_ConcreteJobClass() override;

  [[nodiscard]] std::int32_t verifyOrCreateNewJob(
      const std::string& target, const std::string& uri,
      const std::vector<std::uint16_t>& installOptions,
      const std::vector<std::string>& installOptionsValues, core::CimInstance*& job,
      bool create) override;

 protected:
  // Deletes the threads of finished jobs and publishes every job's state.
  void refresh() override;

 private:
  // Throws what the check of the image throws.
  [[nodiscard]] std::unique_ptr<Orvex_ConcreteJob> createNewJob(
      const std::string& target, const std::string& uri,
      const std::vector<std::uint16_t>& installOptions,
      const std::vector<std::string>& installOptionsValues);
  // Lists the job and starts it. Returns an agent::JobResult; what is thrown leaves no job behind.
  [[nodiscard]] std::int32_t startNewJob(std::unique_ptr<Orvex_ConcreteJob> created,
                                         core::CimInstance*& job);

  platform::Clock& m_clock;
  std::atomic<std::uint32_t> m_nextJobNumber{1};
  agent::UnstartedJobs m_unstartedJobs;
};

#endif  // ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_
