// The jobs of installations whose end the audit has to tell, whether a client asks for it or not.
//
// Any thread calls.

#ifndef ORVEX_WBEM_STARTEDJOBS_H_
#define ORVEX_WBEM_STARTEDJOBS_H_

#include <string>
#include <vector>

#include "Utils/Mutex.h"
#include "core/CimBroker.h"
#include "wbem/Audit.h"
#include "wbem/Caller.h"
#include "wbem/Installation.h"

namespace wbem {

class StartedJobs {
 public:
  // Both are the caller's and outlive this.
  StartedJobs(core::CimBroker& broker, Audit& audit) : m_broker(broker), m_audit(audit) {}

  // Takes a job on that the caller has started; `path` is its object path.
  void add(const Caller& caller, const std::string& path, const Installation& installation);

  // Writes a record ("JobEnd") of each job that has come to its end since the last call: how it
  // ended, and what the adapter holds now. Holds the broker's request. Throws what a provider
  // throws; the records that were not written then come with the next call.
  void recordEnds();

 private:
  struct Job {
    Caller caller;
    std::string path;
    Installation installation;
  };

  // Returns how the job ended; empty while it runs. The caller holds the broker's request.
  [[nodiscard]] std::string findEnd(const Job& job);
  [[nodiscard]] std::vector<Job> getJobs() ORVEX_REQUIRES(m_recordMutex);
  void forget(const std::string& path) ORVEX_REQUIRES(m_recordMutex);

  core::CimBroker& m_broker;
  Audit& m_audit;
  utils::Mutex m_recordMutex;  // taken before the others; one call of recordEnds() at a time
  utils::Mutex m_mutex;        // a leaf
  std::vector<Job> m_jobs ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace wbem

#endif  // ORVEX_WBEM_STARTEDJOBS_H_
