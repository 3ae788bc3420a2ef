// A job as one look found it.

#ifndef ORVEX_CLIENT_JOBREPORT_H_
#define ORVEX_CLIENT_JOBREPORT_H_

#include <chrono>
#include <string>

#include "cim/JobState.h"
#include "client/Snapshot.h"

namespace client {

struct JobReport {
  std::string path;
  cim::JobState state{};  // 0 where the job tells none
  unsigned percent = 0;
  unsigned errorCode = 0;
  std::string errorText;
  Properties properties;            // all of them
  std::chrono::seconds elapsed{0};  // since the job began, as far as whoever looks knows
  // Whom it waited for in vain, and why it could have no flash lock, as far as whoever looks knows.
  std::string flashHolder;
  std::string lockFailure;

  [[nodiscard]] bool isCompleted() const { return state == cim::JobState::Completed; }
  // Returns for example "Exception, error 17: Flash write failed", or "Exception, error 4: Timeout
  // Error (the flash was held by quorvel, process 4711, user root, for 05:12)".
  [[nodiscard]] std::string outcome() const;
};

// Returns what an instance of a job tells.
[[nodiscard]] JobReport reportOf(const InstanceSnapshot& job);

// Returns the InstanceID of an object path, empty for a text that is none or has no such key.
[[nodiscard]] std::string jobIdOf(const std::string& path);

}  // namespace client

#endif  // ORVEX_CLIENT_JOBREPORT_H_
