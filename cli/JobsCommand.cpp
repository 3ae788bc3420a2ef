#include "cli/JobsCommand.h"

#include <memory>
#include <string>
#include <vector>

#include "cli/Jobs.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "cli/TextTable.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "A host (--host) lists every job since it was started, the oldest first. Without --host there\n"
    "is none to list: the jobs of 'quorvel update' run in that process and end with it.\n"
    "\n"
    "With --json: [{\"path\", \"id\", \"state\", \"stateText\", \"percent\", \"elapsed\",\n"
    "\"errorCode\", \"errorText\"}]; elapsed is \"mm:ss\".\n"
    "\n"
    "Examples:\n"
    "  quorvel jobs --host https://admin@server1:5989\n"
    "  quorvel jobs --host http://127.0.0.1:5988 --json\n";

std::string elapsedOf(const Job& job) {
  return job.age ? toClockText(*job.age) : "";
}

Json toJson(const std::vector<Job>& jobs) {
  Json document = Json::array();
  for (const Job& job : jobs) {
    Json entry;
    entry["path"] = job.report.path;
    entry["id"] = job.id;
    entry["state"] = job.report.state;
    entry["stateText"] = jobStateName(job.report.state);
    entry["percent"] = job.report.percent;
    entry["elapsed"] = elapsedOf(job);
    entry["errorCode"] = job.report.errorCode;
    entry["errorText"] = job.report.errorText;
    document.push_back(entry);
  }
  return document;
}

std::string describeError(const JobReport& report) {
  if (report.errorCode == 0 && report.errorText.empty()) {
    return "";
  }
  return std::to_string(report.errorCode) +
         (report.errorText.empty() ? "" : ": " + report.errorText);
}

void printTable(std::ostream& out, const std::vector<Job>& jobs) {
  TextTable table({"JOB", "STATE", "DONE", "ELAPSED", "ERROR"});
  for (const Job& job : jobs) {
    table.addRow({job.id, jobStateName(job.report.state), std::to_string(job.report.percent) + " %",
                  elapsedOf(job), describeError(job.report)});
  }
  table.print(out);
}

ExitStatus showJobs(const Context& context) {
  const std::unique_ptr<Connection> connection = openConnection(context.options);
  const std::vector<Job> jobs = readJobs(*connection);
  if (context.options.isJson) {
    printJson(context.out, toJson(jobs));
  } else if (!jobs.empty()) {
    printTable(context.out, jobs);
  } else if (connection->isRemote()) {
    context.out << "The host has had no job since it was started.\n";
  } else {
    context.out << "There are no jobs: those of 'quorvel update' run in that process and end with "
                   "it. --host names a host whose jobs can be listed.\n";
  }
  return ExitStatus::Done;
}

}  // namespace

void addJobsCommand(CLI::App& program, Context& context) {
  CLI::App* command =
      program.add_subcommand("jobs", "Show the updates of a host and what became of them");
  command->footer(kFooter);
  command->callback([&context] { context.command = [&context] { return showJobs(context); }; });
}

}  // namespace cli
