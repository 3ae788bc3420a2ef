// Follows a job to its end.

#ifndef ORVEX_CLI_JOBWATCH_H_
#define ORVEX_CLI_JOBWATCH_H_

#include <chrono>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/Connection.h"
#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/ProgressView.h"

namespace cli {

// The values of JobState.
enum JobState : unsigned {
  kJobNew = 2,
  kJobStarting = 3,
  kJobRunning = 4,
  kJobSuspended = 5,
  kJobShuttingDown = 6,
  kJobCompleted = 7,
  kJobTerminated = 8,
  kJobKilled = 9,
  kJobException = 10,
  kJobService = 11,
  kJobQueryPending = 12,
};

// Returns the name of a state, "Completed" for example; its number as text where it has none.
[[nodiscard]] std::string jobStateName(unsigned state);

// A job as one look found it.
struct JobReport {
  std::string path;
  unsigned state = 0;
  unsigned percent = 0;
  unsigned errorCode = 0;
  std::string errorText;
  Json properties;                  // those that are not NULL
  std::chrono::seconds elapsed{0};  // since the job began, as far as the watch knows

  [[nodiscard]] bool isCompleted() const { return state == kJobCompleted; }
  // Nothing will change any more.
  [[nodiscard]] bool hasEnded() const;
  // Returns for example "Exception, error 17: Flash write failed".
  [[nodiscard]] std::string outcome() const;
};

// Returns what an instance of a job tells.
[[nodiscard]] JobReport reportOf(const InstanceSnapshot& job);

// Returns the InstanceID of an object path, empty for a text that is none or has no such key.
[[nodiscard]] std::string jobIdOf(const std::string& path);

// Waits for the end of the job and shows its progress meanwhile. An interrupt that the guard notes
// is answered on `err`, and the wait goes on, where the job would end with this process: a flash
// that is being written cannot be left. Of a job that goes on without this process it is a Fault,
// which says how to follow the job again; so does one for a host that cannot be asked, which is
// thrown once the connection's patience is at an end. `age` is how long the job has run already.
// Throws Fault, too, when there is no such job.
[[nodiscard]] JobReport waitForJob(Connection& connection, const std::string& path,
                                   ProgressView& view, InterruptGuard& guard, std::ostream& err,
                                   std::chrono::seconds age = std::chrono::seconds(0));

// Returns how progress is to be shown on standard output.
[[nodiscard]] ProgressStyle chooseProgressStyle(const GlobalOptions& options, bool isWanted);

}  // namespace cli

#endif  // ORVEX_CLI_JOBWATCH_H_
