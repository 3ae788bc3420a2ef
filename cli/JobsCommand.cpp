#include "cli/JobsCommand.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Utils/ClockText.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/LocalWords.h"
#include "cli/Session.h"
#include "cli/TextTable.h"
#include "client/Jobs.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "A host (--host) lists every job since it was started, the oldest first. This program itself\n"
    "has none to list: the jobs of 'quorvel update' run in that process and end with it.\n"
    "\n"
    "With --json: [{\"path\", \"id\", \"state\", \"stateText\", \"percent\", \"elapsed\",\n"
    "\"errorCode\", \"errorText\"}]; elapsed is \"mm:ss\".\n"
    "\n"
    "Examples:\n"
    "  quorvel jobs --host https://admin@server1:5989\n"
    "  quorvel jobs --host http://127.0.0.1:5988 --json\n";

std::string elapsedOf(const client::Job& job) {
  return job.age ? utils::toClockText(*job.age) : "";
}

client::Value toJson(const std::vector<client::Job>& jobs) {
  client::Value document = client::Value::array();
  for (const client::Job& job : jobs) {
    client::Value entry;
    entry.set("path", job.report.path);
    entry.set("id", job.id);
    entry.set("state", static_cast<std::uint16_t>(job.report.state));
    entry.set("stateText", cim::toText(job.report.state));
    entry.set("percent", job.report.percent);
    entry.set("elapsed", elapsedOf(job));
    entry.set("errorCode", job.report.errorCode);
    entry.set("errorText", job.report.errorText);
    document.push(std::move(entry));
  }
  return document;
}

std::string describeError(const client::JobReport& report) {
  if (report.errorCode == 0 && report.errorText.empty()) {
    return "";
  }
  return std::to_string(report.errorCode) +
         (report.errorText.empty() ? "" : ": " + report.errorText);
}

void printTable(std::ostream& out, const std::vector<client::Job>& jobs) {
  TextTable table({"JOB", "STATE", "DONE", "ELAPSED", "ERROR"});
  for (const client::Job& job : jobs) {
    table.addRow({job.id, cim::toText(job.report.state), std::to_string(job.report.percent) + " %",
                  elapsedOf(job), describeError(job.report)});
  }
  table.print(out);
}

ExitStatus showJobs(const Context& context) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const std::vector<client::Job> jobs = client::readJobs(*connection);
  if (context.options.isJson) {
    printJson(context.out, toJson(jobs));
  } else if (!jobs.empty()) {
    printTable(context.out, jobs);
  } else if (connection->isRemote()) {
    context.out << "The host has had no job since it was started.\n";
  } else {
    context.out << toLocalHelp(
        "There are no jobs: those of 'quorvel update' run in that process and end with it. --host "
        "names a host whose jobs can be listed.\n");
  }
  return ExitStatus::Done;
}

}  // namespace

void addJobsCommand(CLI::App& program, Context& context) {
  Command command(program, "jobs", "Show the updates of a host and what became of them");
  command.showOnlyWithHosts();
  command.setFooter(kFooter);
  command.onChosen([&context] { context.command = [&context] { return showJobs(context); }; });
}

}  // namespace cli
