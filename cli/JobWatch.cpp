#include "cli/JobWatch.h"

#include <optional>
#include <thread>
#include <utility>

#include "Os/Environment.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::pair<unsigned, const char*> kStateNames[] = {
    {kJobNew, "New"},
    {kJobStarting, "Starting"},
    {kJobRunning, "Running"},
    {kJobSuspended, "Suspended"},
    {kJobShuttingDown, "Shutting Down"},
    {kJobCompleted, "Completed"},
    {kJobTerminated, "Terminated"},
    {kJobKilled, "Killed"},
    {kJobException, "Exception"},
    {kJobService, "Service"},
    {kJobQueryPending, "Query Pending"},
};

void yieldToHost(const Connection& connection, const JobReport& job) {
  const std::string command =
      connection.watchCommand(job.properties.value("InstanceID", std::string()));
  if (!command.empty()) {
    throw Fault("interrupted: the job goes on in the host; to follow it again:\n  " + command);
  }
}

}  // namespace

std::string jobStateName(unsigned state) {
  for (const auto& [number, name] : kStateNames) {
    if (number == state) {
      return name;
    }
  }
  return std::to_string(state);
}

bool JobReport::hasEnded() const {
  return state == kJobCompleted || state == kJobTerminated || state == kJobKilled ||
         state == kJobException;
}

std::string JobReport::outcome() const {
  std::string text = jobStateName(state);
  if (!isCompleted()) {
    text += ", error " + std::to_string(errorCode);
    if (!errorText.empty()) {
      text += ": " + errorText;
    }
  }
  return text;
}

JobReport reportOf(const InstanceSnapshot& job) {
  JobReport report;
  report.path = job.path;
  report.properties = propertiesToJson(job.properties, NullProperties::Left);
  report.state = report.properties.value("JobState", 0U);
  report.percent = report.properties.value("PercentComplete", 0U);
  report.errorCode = report.properties.value("ErrorCode", 0U);
  report.errorText = report.properties.value("ErrorDescription", std::string());
  return report;
}

JobReport readJob(Connection& connection, const std::string& path) {
  const std::optional<InstanceSnapshot> job = connection.findInstance(path);
  if (!job) {
    throw Fault("the job " + path + " is gone; 'quorvel adapters' shows what the adapter holds");
  }
  return reportOf(*job);
}

JobReport waitForJob(Connection& connection, const std::string& path, ProgressView& view,
                     InterruptGuard& guard, std::ostream& err, std::chrono::seconds age) {
  const Clock::time_point start = Clock::now() - age;
  for (;;) {
    JobReport report = readJob(connection, path);
    report.elapsed = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
    if (guard.takeInterrupt() && !report.hasEnded()) {
      view.endLine();
      yieldToHost(connection, report);
      err << "quorvel: interrupted: the flash is being written and cannot be left half done; "
             "waiting for its end"
          << std::endl;
    }
    view.show(report.percent, report.elapsed);
    if (report.hasEnded()) {
      view.endLine();
      return report;
    }
    std::this_thread::sleep_for(connection.pollInterval());
  }
}

ProgressStyle chooseProgressStyle(const GlobalOptions& options, bool isWanted) {
  if (options.isJson || !isWanted) {
    return ProgressStyle::None;
  }
  return os::isOutputTerminal() ? ProgressStyle::Live : ProgressStyle::Lines;
}

}  // namespace cli
