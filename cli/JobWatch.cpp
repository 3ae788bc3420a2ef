#include "cli/JobWatch.h"

#include <optional>
#include <thread>
#include <utility>

#include "Os/Environment.h"
#include "Os/OSLocker.h"
#include "Utils/Datetime.h"
#include "Utils/Printable.h"
#include "client/Fault.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

// What a user may call a job: the path of one that has no InstanceID.
std::string nameOf(const std::string& path) {
  std::string id = client::jobIdOf(path);
  return id.empty() ? path : id;
}

// The looks at one job, until its end or that of the patience.
class Watch {
 public:
  Watch(client::Connection& connection, const std::string& path)
      : m_connection(connection),
        m_path(path),
        m_command(utils::toPrintable(connection.watchCommand(nameOf(path)))) {}

  // Returns the job as it is; nothing where the host could not be asked this time. Throws Fault
  // when there is no such job, and when the host could not be asked for too long.
  std::optional<client::JobReport> look();

  // To be called on an interrupt. Throws Fault where the job goes on without this process.
  void yieldToHost(bool isAnswered) const;

 private:
  // Returns whether it is the job of the first look: a host that was started again gives the names
  // of its jobs to others.
  [[nodiscard]] bool isTheJob(const client::InstanceSnapshot& job);
  [[noreturn]] void leave(const std::string& reason, const char* job,
                          client::Fault::Kind kind) const;

  client::Connection& m_connection;
  const std::string m_path;
  const std::string m_command;  // follows the job again; empty where it ends with this process
  Clock::time_point m_lastAnswer = Clock::now();
  std::optional<utils::Datetime> m_begin;
};

std::optional<client::JobReport> Watch::look() {
  std::optional<client::InstanceSnapshot> job;
  try {
    job = m_connection.lookAgain(m_path);
  } catch (const client::PassingFault& fault) {
    if (Clock::now() - m_lastAnswer < m_connection.patience()) {
      return std::nullopt;
    }
    leave(fault.what(), "\nThe job may go on in the host", fault.kind());
  } catch (const client::Fault& fault) {
    leave(fault.what(), "\nThe job may go on in the host", fault.kind());
  }
  m_lastAnswer = Clock::now();
  if (!job || !isTheJob(*job)) {
    throw client::Fault("the job " + utils::toPrintable(m_path) + " is gone; '" +
                        m_connection.program() + " adapters' shows what the adapter holds");
  }
  return client::reportOf(*job);
}

bool Watch::isTheJob(const client::InstanceSnapshot& job) {
  const auto begin = utils::Datetime::fromCimText(job.value<std::string>("StartTime"));
  if (!m_begin) {
    m_begin = begin;
  }
  return !begin || begin->value == m_begin->value;
}

void Watch::yieldToHost(bool isAnswered) const {
  if (m_command.empty()) {
    return;
  }
  if (isAnswered) {
    leave("interrupted: ", "the job goes on in the host", client::Fault::Kind::Refused);
  }
  leave("interrupted: the host does not answer at the moment", "; the job may go on in it",
        client::Fault::Kind::Refused);
}

void Watch::leave(const std::string& reason, const char* job, client::Fault::Kind kind) const {
  if (m_command.empty()) {
    throw client::Fault(reason, kind);
  }
  throw client::Fault(reason + job + "; to follow it again:\n  " + m_command, kind);
}

// Ends the process where its update has not begun to write, and then never will.
void yieldUnlessWriting(InterruptGuard& guard, std::ostream& err) {
  if (os::OSLocker::giveUp()) {
    err << "quorvel: interrupted before the flash could be had: nothing was written" << std::endl;
    guard.yieldToInterrupt();
    throw client::Fault("the update was given up");
  }
  err << "quorvel: interrupted: the flash is being written and cannot be left half done; waiting "
         "for its end"
      << std::endl;
}

// Tells why the program goes on although the terminal wanted to stop it.
void refuseStop(std::ostream& err, bool isWaiting) {
  err << "quorvel: the stop is refused: "
      << (isWaiting
              ? "a program that waits for the flash could be given it while it is stopped, and "
                "would keep it from all others"
              : "a stopped program would keep the machine's flash from all others, and this "
                "one half written")
      << std::endl;
}

client::JobReport follow(Watch& watch, const client::Connection& connection, ProgressView& view,
                         InterruptGuard& guard, std::ostream& err, Clock::time_point start) {
  const bool isOwnJob = !connection.isRemote();
  for (;;) {
    std::optional<client::JobReport> report = watch.look();
    const bool hasEnded = report && cim::hasEnded(report->state);
    if (guard.takeInterrupt() && !hasEnded) {
      view.endLine();
      watch.yieldToHost(report.has_value());
      yieldUnlessWriting(guard, err);
    }
    if (guard.takeStop()) {
      view.endLine();
      refuseStop(err, isOwnJob && !os::OSLocker::describeAwaited().empty());
    }
    if (report) {
      report->elapsed = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
      const std::string awaited = isOwnJob ? os::OSLocker::describeAwaited() : std::string();
      if (awaited.empty()) {
        view.show(report->percent, report->elapsed);
      } else {
        view.showWait(awaited, report->elapsed);
      }
    }
    if (hasEnded) {
      if (isOwnJob && !report->isCompleted()) {
        report->flashHolder = os::OSLocker::describeTimeout();
        report->lockFailure = os::OSLocker::describeFailure();
      }
      return std::move(*report);
    }
    std::this_thread::sleep_for(connection.pollInterval());
  }
}

}  // namespace

client::JobReport waitForJob(client::Connection& connection, const std::string& path,
                             ProgressView& view, InterruptGuard& guard, std::ostream& err,
                             std::chrono::seconds age) {
  Watch watch(connection, path);
  try {
    client::JobReport report = follow(watch, connection, view, guard, err, Clock::now() - age);
    view.endLine();
    return report;
  } catch (const client::Fault&) {
    view.endLine();
    throw;
  }
}

client::Value propertiesOf(const client::JobReport& job) {
  return client::toValue(job.properties, client::NullProperties::Left);
}

ProgressStyle chooseProgressStyle(const GlobalOptions& options, bool isWanted) {
  if (options.isJson || !isWanted) {
    return ProgressStyle::None;
  }
  return os::isOutputTerminal() ? ProgressStyle::Live : ProgressStyle::Lines;
}

}  // namespace cli
