#include "client/Jobs.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "Utils/Datetime.h"
#include "Utils/Printable.h"
#include "client/ClassNames.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"

namespace client {
namespace {

constexpr const char* kIdProperty = "InstanceID";

bool isMeant(const Job& job, const std::string& text) {
  const std::size_t sign = job.id.rfind('#');
  return !text.empty() && (job.id == text || job.report.path == text || job.id == jobIdOf(text) ||
                           (sign != std::string::npos && job.id.substr(sign + 1) == text));
}

}  // namespace

std::vector<Job> readJobs(Connection& connection) {
  std::vector<Job> jobs;
  for (const InstanceSnapshot& instance : demandInstances(connection, kJobClass)) {
    jobs.push_back({instance.value<std::string>(kIdProperty),
                    parseInterval(instance.value<std::string>("ElapsedTime")), reportOf(instance)});
  }
  return jobs;
}

Job findJob(Connection& connection, const std::string& text, const std::string& hint) {
  std::vector<Job> jobs = readJobs(connection);
  const auto found = std::find_if(jobs.begin(), jobs.end(),
                                  [&text](const Job& job) { return isMeant(job, text); });
  if (found != jobs.end()) {
    return std::move(*found);
  }
  std::string message = "there is no job '" + text + "'";
  if (jobs.empty()) {
    message += connection.isRemote() ? "; the host has had no job since it was started"
                                     : "; jobs of this program end with it" + hint;
    throw Fault(message);
  }
  message += "; the jobs are:";
  for (const Job& job : jobs) {
    message += "\n  " + utils::toPrintable(job.id) + " (" + cim::toText(job.report.state) + ")";
  }
  throw Fault(message);
}

std::optional<std::chrono::seconds> parseInterval(const std::string& text) {
  constexpr std::chrono::hours kLongest{24 * 366};
  const std::optional<utils::Datetime> interval = utils::Datetime::fromCimText(text);
  if (!interval || interval->isTimestamp) {
    return std::nullopt;
  }
  const std::chrono::microseconds length(interval->value);
  return length <= kLongest
             ? std::optional(std::chrono::duration_cast<std::chrono::seconds>(length))
             : std::nullopt;
}

}  // namespace client
