// The provider of the jobs, and the one place where an update request becomes a job.

#ifndef ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_
#define ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "agent/ConcreteJobFactory.h"
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
  [[nodiscard]] std::int32_t createNewJob(const std::string& target, const std::string& uri,
                                          const std::vector<std::uint16_t>& installOptions,
                                          const std::vector<std::string>& installOptionsValues,
                                          core::CimInstance*& job);

  platform::Clock& m_clock;
  std::uint32_t m_nextJobNumber = 1;
};

#endif  // ORVEX_AGENT_ORVEX_CONCRETEJOBCLASS_H_
