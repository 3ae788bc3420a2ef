#include "cli/InvokeCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Printable.h"
#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/JobWatch.h"
#include "cli/JsonOutput.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "client/ErrorRecords.h"
#include "client/ServedClasses.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "VALUE has the type that the method's signature gives it: numbers decimal or behind 0x, true\n"
    "or false, a text, an object path; the elements of an array stand between commas. NAME= with\n"
    "nothing behind it is NULL, a name left out is an argument that is missing. A job that the\n"
    "method creates is followed to its end. It runs in this process, which cannot end before it.\n"
    "With --host it runs in the host, and goes on when this command is interrupted.\n"
    "\n"
    "With --json: {\"returnValue\", \"returnText\", \"outputs\": {NAME: VALUE}, \"job\": "
    "{\"path\",\n"
    "\"properties\"}}; job is null when there is none.\n"
    "\n"
    "Examples ('quorvel instances Orvex_SoftwareInstallationService' prints the object path):\n"
    "  quorvel invoke \"$SERVICE\" InstallFromURI URI=file:///tmp/firmware.rom Target=\"$PORT\" "
    "\\\n"
    "      InstallOptions=3,5 InstallOptionsValues=\n";

struct Options {
  std::string path;
  std::string method;
  std::vector<std::string> arguments;
};

client::Value toJson(const client::MethodAnswer& answer,
                     const std::optional<client::JobReport>& job) {
  client::Value document;
  document.set("returnValue", answer.returnValue);
  document.set("returnText", answer.returnText);
  document.set("outputs", client::toValue(answer.outputs, client::NullProperties::Shown));
  document.set(
      "job", job ? client::Value::object({{"path", job->path}, {"properties", propertiesOf(*job)}})
                 : client::Value());
  return document;
}

void printAnswer(std::ostream& out, const client::MethodAnswer& answer) {
  out << "Return value: " << answer.returnValue;
  if (!answer.returnText.empty()) {
    out << " (" << answer.returnText << ")";
  }
  out << '\n';
  if (!answer.outputs.empty()) {
    out << "Outputs:\n";
    printProperties(out, answer.outputs, client::NullProperties::Shown);
  }
  if (!answer.jobPath.empty()) {
    out << "Job: " << utils::toPrintable(answer.jobPath) << '\n';
  }
  out.flush();
}

std::optional<client::JobReport> followJob(const Context& context, client::Connection& connection,
                                           const client::MethodAnswer& answer,
                                           InterruptGuard& guard) {
  if (answer.jobPath.empty()) {
    guard.yieldToInterrupt();
    return std::nullopt;
  }
  ProgressView view(context.out, chooseProgressStyle(context.options, true), "waiting for the job");
  return waitForJob(connection, answer.jobPath, view, guard, context.err);
}

ExitStatus invoke(const Context& context, const Options& options) {
  Arguments arguments(options.method, options.arguments,
                      context.options.host.empty() ? MethodNames::Exact : MethodNames::InAnyCase);
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const core::CimPath path = client::parseObjectPath(options.path);

  std::optional<InterruptGuard> guard;
  const client::MethodAnswer answer = connection->invoke(
      path.getModelPath(), options.method, arguments.in(), arguments.out(),
      [&guard, &connection] { guard.emplace(connection->isRemote() ? Stops::Let : Stops::Held); });
  if (!context.options.isJson) {
    printAnswer(context.out, answer);
  }
  const std::optional<client::JobReport> job =
      followJob(context, *connection, answer, guard.value());
  if (context.options.isJson) {
    printJson(context.out, toJson(answer, job));
  } else if (job) {
    context.out << "Job ended: " << job->outcome() << '\n';
  }
  if (!answer.reason.empty()) {
    context.err << "quorvel: " << utils::toPrintable(options.method)
                << " refused: " << utils::toPrintable(client::withoutType(answer.reason)) << '\n';
  }
  return answer.isAccepted() && (!job || job->isCompleted()) ? ExitStatus::Done
                                                             : ExitStatus::Failed;
}

}  // namespace

void addInvokeCommand(CLI::App& program, Context& context) {
  Command command(program, "invoke", "Call a method of a CIM instance");
  const auto options = std::make_shared<Options>();
  command.add({"OBJECTPATH", "The instance, as 'quorvel instances' prints it", "", true},
              options->path);
  command.add({"METHOD", "Name of the method", "", true}, options->method);
  command.add({"NAME=VALUE", "Arguments of the method"}, options->arguments);
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return invoke(context, *options); };
  });
}

}  // namespace cli
