// The update jobs that are served, and the one that a user names.

#ifndef ORVEX_CLIENT_JOBS_H_
#define ORVEX_CLIENT_JOBS_H_

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "client/Connection.h"
#include "client/JobReport.h"

namespace client {

// A job, with what a list shows beside its report.
struct Job {
  std::string id;                           // InstanceID, "Orvex:FirmwareUpdate@Job#1"
  std::optional<std::chrono::seconds> age;  // how long it has run, or ran
  JobReport report;
};

// Returns the jobs in the order in which they are served. Throws Fault when nobody serves their
// class.
[[nodiscard]] std::vector<Job> readJobs(Connection& connection);

// Returns the one that a text names: by its InstanceID, its object path, or its number, which is
// what stands behind '#' in the InstanceID. Throws Fault, which lists the jobs, when there is none;
// where that is because this program has none, with `hint` at its end.
[[nodiscard]] Job findJob(Connection& connection, const std::string& text,
                          const std::string& hint = "");

// Returns the whole seconds of an interval in CIM form (DSP0004: "00000000000042.000000:000");
// nothing for a text that is none, and for one of more than a year, which no job takes.
[[nodiscard]] std::optional<std::chrono::seconds> parseInterval(const std::string& text);

}  // namespace client

#endif  // ORVEX_CLIENT_JOBS_H_
