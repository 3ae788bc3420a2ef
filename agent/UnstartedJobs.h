// Jobs that could not start their thread, until they are gone. The end of such a job waits for its
// thread all the same (see JobThread), so it comes on a thread of its own: no request waits for it.
//
// Where threads cannot be started, the jobs stay until one can, or until this object goes. Any
// thread may call.

#ifndef ORVEX_AGENT_UNSTARTEDJOBS_H_
#define ORVEX_AGENT_UNSTARTEDJOBS_H_

#include <memory>
#include <vector>

#include "Utils/Mutex.h"
#include "agent/Orvex_ConcreteJob.h"

namespace agent {

class UnstartedJobs {
 public:
  UnstartedJobs();
  UnstartedJobs(const UnstartedJobs&) = delete;
  UnstartedJobs& operator=(const UnstartedJobs&) = delete;
  // Waits for the end of all.
  ~UnstartedJobs();

  void add(std::unique_ptr<Orvex_ConcreteJob> job);
  // Begins to end those that wait, where it can.
  void tidyUp();

 private:
  using Jobs = std::vector<std::unique_ptr<Orvex_ConcreteJob>>;
  class Remover;

  utils::Mutex m_mutex;
  Jobs m_waiting ORVEX_GUARDED_BY(m_mutex);
  // Those before have gone; null while there was nothing to do.
  std::unique_ptr<Remover> m_remover ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace agent

#endif  // ORVEX_AGENT_UNSTARTEDJOBS_H_
