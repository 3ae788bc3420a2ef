#include "cli/UpdateCommand.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "cli/InstallationService.h"
#include "cli/JobWatch.h"
#include "cli/Output.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "cli/Target.h"

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

struct Options {
  std::string target;
  std::string image;
  UpdateOptions update;
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

void reportEnd(const Context& context, const Target& target, const JobReport& job) {
  if (!job.isCompleted()) {
    context.err << "quorvel: update of " << target.label << " failed: " << job.outcome() << '\n';
    context.err << "  next: " << adviseOnFailure(job) << '\n';
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
    answer = installFromUri(broker, image.uri, target.path, options.update);
  }

  std::optional<JobReport> job;
  if (answer.jobPath.empty()) {
    guard.yieldToInterrupt();
    reportRefusal(context, "update of " + target.label, answer,
                  {image.path, !options.update.types.empty(), options.update.isForced});
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
  command
      ->add_option("--types", options->update.types, "Install these image types of the file only")
      ->type_name("IMG_PXE+IMG_UEFI")
      ->check(CLI::Validator(
          [](const std::string& text) { return text.empty() ? "must name a type" : ""; }, ""));
  command->add_flag("--force", options->update.isForced, "Install older firmware, too");
  command->add_flag("--no-progress", options->isProgressHidden, "Print no progress");
  command->footer(kFooter);
  command->callback([&context, options] {
    context.command = [&context, options] { return update(context, *options); };
  });
}

}  // namespace cli
