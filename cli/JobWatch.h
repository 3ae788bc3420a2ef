// Follows a job to its end.

#ifndef ORVEX_CLI_JOBWATCH_H_
#define ORVEX_CLI_JOBWATCH_H_

#include <chrono>
#include <ostream>
#include <string>

#include "cli/Context.h"
#include "cli/Interrupt.h"
#include "cli/ProgressView.h"
#include "client/Connection.h"
#include "client/JobReport.h"

namespace cli {

// Waits for the end of the job and shows its progress meanwhile. An interrupt that the guard notes
// is answered on `err` where the job would end with this process: a flash that is being written
// cannot be left, and the wait goes on; while it is not to be had yet, the process ends as the
// interrupt asks, and nothing was written. Of a job that goes on without this process it is a
// Fault, which says how to follow the job again; so does one for a host that cannot be asked, which
// is thrown once the connection's patience is at an end. `age` is how long the job has run already.
// Throws Fault, too, when there is no such job.
[[nodiscard]] client::JobReport waitForJob(client::Connection& connection, const std::string& path,
                                           ProgressView& view, InterruptGuard& guard,
                                           std::ostream& err,
                                           std::chrono::seconds age = std::chrono::seconds(0));

// Returns the properties of a job that are not NULL, for a document.
[[nodiscard]] client::Value propertiesOf(const client::JobReport& job);

// Returns how progress is to be shown on standard output.
[[nodiscard]] ProgressStyle chooseProgressStyle(const GlobalOptions& options, bool isWanted);

}  // namespace cli

#endif  // ORVEX_CLI_JOBWATCH_H_
