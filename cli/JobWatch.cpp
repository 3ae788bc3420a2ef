#include "cli/JobWatch.h"

#include <optional>
#include <thread>
#include <utility>

#include "Os/Environment.h"
#include "Utils/Exception.h"
#include "cli/TextTable.h"
#include "core/CimPath.h"

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

// What a user may call a job: the path of one that has no InstanceID.
std::string nameOf(const std::string& path) {
  std::string id = jobIdOf(path);
  return id.empty() ? path : id;
}

// The looks at one job, until its end or that of the patience.
class Watch {
 public:
  Watch(Connection& connection, const std::string& path)
      : m_connection(connection),
        m_path(path),
        m_command(toPrintable(connection.watchCommand(nameOf(path)))) {}

  // Returns the job as it is; nothing where the host could not be asked this time. Throws Fault
  // when there is no such job, and when the host could not be asked for too long.
  std::optional<JobReport> look();

  // To be called on an interrupt. Throws Fault where the job goes on without this process.
  void yieldToHost(bool isAnswered) const;

 private:
  [[noreturn]] void leave(const std::string& reason, const char* job, ExitStatus status) const;

  Connection& m_connection;
  const std::string m_path;
  const std::string m_command;  // follows the job again; empty where it ends with this process
  Clock::time_point m_lastAnswer = Clock::now();
};

std::optional<JobReport> Watch::look() {
  std::optional<InstanceSnapshot> job;
  try {
    job = m_connection.lookAgain(m_path);
  } catch (const PassingFault& fault) {
    if (Clock::now() - m_lastAnswer < m_connection.patience()) {
      return std::nullopt;
    }
    leave(fault.what(), "\nThe job may go on in the host", fault.status());
  } catch (const Fault& fault) {
    leave(fault.what(), "\nThe job may go on in the host", fault.status());
  }
  m_lastAnswer = Clock::now();
  if (!job) {
    throw Fault("the job " + toPrintable(m_path) + " is gone; '" + m_connection.program() +
                " adapters' shows what the adapter holds");
  }
  return reportOf(*job);
}

void Watch::yieldToHost(bool isAnswered) const {
  if (m_command.empty()) {
    return;
  }
  if (isAnswered) {
    leave("interrupted: ", "the job goes on in the host", ExitStatus::Failed);
  }
  leave("interrupted: the host does not answer at the moment", "; the job may go on in it",
        ExitStatus::Failed);
}

void Watch::leave(const std::string& reason, const char* job, ExitStatus status) const {
  if (m_command.empty()) {
    throw Fault(reason, status);
  }
  throw Fault(reason + job + "; to follow it again:\n  " + m_command, status);
}

JobReport follow(Watch& watch, const Connection& connection, ProgressView& view,
                 InterruptGuard& guard, std::ostream& err, Clock::time_point start) {
  for (;;) {
    std::optional<JobReport> report = watch.look();
    const bool hasEnded = report && report->hasEnded();
    if (guard.takeInterrupt() && !hasEnded) {
      view.endLine();
      watch.yieldToHost(report.has_value());
      err << "quorvel: interrupted: the flash is being written and cannot be left half done; "
             "waiting for its end"
          << std::endl;
    }
    if (report) {
      report->elapsed = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
      view.show(report->percent, report->elapsed);
    }
    if (hasEnded) {
      return std::move(*report);
    }
    std::this_thread::sleep_for(connection.pollInterval());
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
      text += ": " + toPrintable(errorText);
    }
  }
  return text;
}

JobReport reportOf(const InstanceSnapshot& job) {
  JobReport report;
  report.path = job.path;
  report.properties = propertiesToJson(job.properties, NullProperties::Left);
  report.state = job.value<unsigned>("JobState");
  report.percent = job.value<unsigned>("PercentComplete");
  report.errorCode = job.value<unsigned>("ErrorCode");
  report.errorText = job.value<std::string>("ErrorDescription");
  return report;
}

std::string jobIdOf(const std::string& path) {
  try {
    const core::CimPath parsed(path);
    const auto key = parsed.find("InstanceID");
    return key != parsed.end() ? key->second : "";
  } catch (const utils::ESyntaxError&) {
    return "";
  }
}

JobReport waitForJob(Connection& connection, const std::string& path, ProgressView& view,
                     InterruptGuard& guard, std::ostream& err, std::chrono::seconds age) {
  Watch watch(connection, path);
  try {
    JobReport report = follow(watch, connection, view, guard, err, Clock::now() - age);
    view.endLine();
    return report;
  } catch (const Fault&) {
    view.endLine();
    throw;
  }
}

ProgressStyle chooseProgressStyle(const GlobalOptions& options, bool isWanted) {
  if (options.isJson || !isWanted) {
    return ProgressStyle::None;
  }
  return os::isOutputTerminal() ? ProgressStyle::Live : ProgressStyle::Lines;
}

}  // namespace cli
