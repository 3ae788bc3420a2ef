#include "cli/UpdateCommand.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/ErrorRecords.h"
#include "cli/JobWatch.h"
#include "cli/MethodCall.h"
#include "cli/Output.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "cli/Target.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "TARGET is a port (0000:03:00.0), an adapter (0000:03:00) or the object path of either; IMAGE\n"
    "is a file or a file: URI. The flash then holds the images of the chosen types and no others.\n"
    "An interrupt (Ctrl-C) does not abandon a flash that is being written: the command waits for\n"
    "its end.\n"
    "\n"
    "With --json: {\"returnValue\", \"returnText\", \"job\"}, where job holds the properties of "
    "the\n"
    "finished Orvex_ConcreteJob, and is null when the update was refused.\n"
    "\n"
    "Examples:\n"
    "  quorvel update 0000:03:00.0 firmware.rom\n"
    "  quorvel update 0000:03:00 firmware.rom --types IMG_PXE+IMG_UEFI\n"
    "  quorvel update 0000:03:00 file:///srv/older.rom --force --json\n";

constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
constexpr const char* kMethod = "InstallFromURI";

constexpr std::uint16_t kOptionForce = 3;
constexpr std::uint16_t kOptionUpdate = 5;
constexpr std::uint16_t kOptionTypes = 32768;

struct Options {
  std::string target;
  std::string image;
  std::string types;
  bool isForced = false;
  bool isProgressHidden = false;
};

struct Image {
  std::string uri;
  std::string path;  // empty when a URI was given
};

Image nameImage(const std::string& text) {
  if (text.starts_with("file:")) {
    return {text, ""};
  }
  const std::string path = std::filesystem::absolute(text).string();
  return {"file://" + path, path};
}

// The text of an option stands at the position of the option's number.
struct InstallOptions {
  std::vector<std::uint16_t> numbers;
  std::vector<std::string> texts;

  explicit InstallOptions(const Options& options) {
    add(kOptionUpdate, "");
    if (options.isForced) {
      add(kOptionForce, "");
    }
    if (!options.types.empty()) {
      add(kOptionTypes, options.types);
    }
  }

  void add(std::uint16_t number, std::string text) {
    numbers.push_back(number);
    texts.push_back(std::move(text));
  }
};

core::CimInstance& findService(core::CimBroker& broker) {
  const std::vector<core::CimInstance*> services = broker.getInstances(kServiceClass);
  if (services.empty()) {
    throw Fault(std::string("no ") + kServiceClass +
                " is there; the log tells what became of the update agent (--log-level 3)");
  }
  return *services.front();
}

// The caller holds the broker's request.
MethodAnswer startUpdate(core::CimBroker& broker, const Options& options, const Image& image,
                         const Target& target) {
  InstallOptions chosen(options);
  core::CimPropertyString URI("URI", nullptr);
  URI.setValue(image.uri);
  core::CimPropertyRef Target("Target", nullptr);
  Target.setText(target.path);
  core::CimPropertyUint16_arr InstallOptions("InstallOptions", nullptr);
  InstallOptions.setValue(std::move(chosen.numbers));
  core::CimPropertyString_arr InstallOptionsValues("InstallOptionsValues", nullptr);
  InstallOptionsValues.setValue(std::move(chosen.texts));

  core::CimPropertyList in;
  for (core::CimProperty* argument : std::initializer_list<core::CimProperty*>{
           &URI, &Target, &InstallOptions, &InstallOptionsValues}) {
    in.add(argument);
  }
  core::CimPropertyList out;
  return callMethod(findService(broker), kMethod, in, out);
}

void explain(std::ostream& err, const std::string& heading, const std::string& text) {
  if (!text.empty()) {
    err << "  " << heading << ": " << text << '\n';
  }
}

void reportRefusal(const Context& context, const Options& options, const Image& image,
                   const Target& target, const MethodAnswer& answer) {
  context.err << "quorvel: update of " << target.label << " refused: " << answer.returnValue << ", "
              << answer.returnText << '\n';
  const bool isLogOff = context.options.logLevel == "0";
  explain(context.err, "reason",
          answer.reason.empty() && isLogOff ? "not known, since --log-level 0 keeps no records"
                                            : withoutType(answer.reason));
  explain(context.err, "next",
          adviseOnRefusal(answer.returnValue, answer.reason,
                          {image.path, !options.types.empty(), options.isForced}));
}

void reportEnd(const Context& context, const Target& target, const JobReport& job) {
  if (!job.isCompleted()) {
    context.err << "quorvel: update of " << target.label << " failed: " << job.outcome() << '\n';
    explain(context.err, "next", adviseOnFailure(job));
  } else if (!context.options.isJson) {
    context.out << "Completed: " << target.label << " is updated (" << toClockText(job.elapsed)
                << ")\n";
  }
}

Json toJson(const MethodAnswer& answer, const std::optional<JobReport>& job) {
  Json document;
  document["returnValue"] = answer.returnValue;
  document["returnText"] = answer.returnText;
  document["job"] = job ? job->properties : Json();
  return document;
}

ExitStatus update(const Context& context, const Options& options) {
  core::CimBroker& broker = openBroker(context.options);
  const Image image = nameImage(options.image);
  Target target;
  MethodAnswer answer;
  InterruptGuard guard;
  {
    const core::CimBroker::Request request(broker);
    target = findTarget(broker, options.target);
    answer = startUpdate(broker, options, image, target);
  }

  std::optional<JobReport> job;
  if (answer.jobPath.empty()) {
    guard.yieldToInterrupt();
    reportRefusal(context, options, image, target, answer);
  } else {
    ProgressView view(context.out, chooseProgressStyle(context.options, !options.isProgressHidden),
                      "updating " + target.label);
    job = waitForJob(broker, answer.jobPath, view, guard, context.err);
    reportEnd(context, target, *job);
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(answer, job));
  }
  return job && job->isCompleted() ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace

void addUpdateCommand(CLI::App& program, Context& context) {
  CLI::App* command = program.add_subcommand("update", "Update the firmware of an adapter");
  const auto options = std::make_shared<Options>();
  command->add_option("TARGET", options->target, "Port, adapter or object path")
      ->type_name("")
      ->required();
  command->add_option("IMAGE", options->image, "File or file: URI of the firmware image")
      ->type_name("")
      ->required();
  command->add_option("--types", options->types, "Install these image types of the file only")
      ->type_name("IMG_PXE+IMG_UEFI")
      ->check(CLI::Validator(
          [](const std::string& text) { return text.empty() ? "must name a type" : ""; }, ""));
  command->add_flag("--force", options->isForced, "Install older firmware, too");
  command->add_flag("--no-progress", options->isProgressHidden, "Print no progress");
  command->footer(kFooter);
  command->callback([&context, options] {
    context.command = [&context, options] { return update(context, *options); };
  });
}

}  // namespace cli
