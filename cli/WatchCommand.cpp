#include "cli/WatchCommand.h"

#include <memory>
#include <string>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/LocalWords.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "client/Jobs.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "JOB is its InstanceID, its number or its object path; 'quorvel jobs' lists them. An "
    "interrupt\n"
    "(Ctrl-C) ends this command and not the job. The exit status is that of the job: 0 when it "
    "was\n"
    "completed, else 1.\n"
    "\n"
    "With --json: {\"job\"}, which holds the properties of the finished Orvex_ConcreteJob.\n"
    "\n"
    "Examples:\n"
    "  quorvel watch 1 --host https://admin@server1:5989\n"
    "  quorvel watch 'Orvex:FirmwareUpdate@Job#1' --host http://127.0.0.1:5988\n";

struct Options {
  std::string job;
  bool isProgressHidden = false;
};

void reportEnd(const Context& context, const client::Connection& connection, const client::Job& job,
               const client::JobReport& report) {
  if (!report.isCompleted()) {
    context.err << "quorvel: the job " << utils::toPrintable(job.id)
                << " failed: " << report.outcome() << '\n';
    context.err << "  next: " << adviseOnFailure(report, connection) << '\n';
  } else if (!context.options.isJson) {
    context.out << "Completed: the job " << utils::toPrintable(job.id) << " has ended\n";
  }
}

ExitStatus watch(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::Job job = client::findJob(
      *connection, options.job, hasHosts() ? ": --host names a host whose jobs go on" : "");
  InterruptGuard guard;
  ProgressView view(context.out, chooseProgressStyle(context.options, !options.isProgressHidden),
                    utils::toPrintable(job.id));
  const client::JobReport report =
      waitForJob(*connection, job.report.path, view, guard, context.err,
                 job.age.value_or(std::chrono::seconds(0)));
  reportEnd(context, *connection, job, report);
  if (context.options.isJson) {
    client::Value document;
    document.set("job", propertiesOf(report));
    printJson(context.out, document);
  }
  return report.isCompleted() ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace

void addWatchCommand(CLI::App& program, Context& context) {
  Command command(program, "watch", "Follow a job of a host to its end");
  const auto options = std::make_shared<Options>();
  command.add({"JOB", "The job, as 'quorvel jobs' prints it", "", true}, options->job);
  command.addFlag("--no-progress", "Print no progress", options->isProgressHidden);
  command.showOnlyWithHosts();
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return watch(context, *options); };
  });
}

}  // namespace cli
