#include "cli/UpdateCommand.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "Os/Uri.h"
#include "Utils/ClockText.h"
#include "Utils/Conversions.h"
#include "cli/Command.h"
#include "cli/Duration.h"
#include "cli/JobWatch.h"
#include "cli/JsonOutput.h"
#include "cli/LocalReason.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "cli/TargetName.h"
#include "client/Fault.h"
#include "client/Identities.h"
#include "client/InstallationService.h"
#include "client/Target.h"
#include "host/SharedOptions.h"
#include "platform/Paths.h"
#include "platform/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "TARGET is a port (0000:03:00.0), an adapter (0000:03:00) or the object path of either; IMAGE\n"
    "is a file or a file: URI. With --identity, the image is one of the files that 'quorvel\n"
    "identities' lists, by its path, its name where no other file has that, its InstanceID or its\n"
    "object path. The flash then holds the images of the chosen types and no others.\n"
    "An interrupt (Ctrl-C) ends an update that still waits for the flash, and nothing is written;\n"
    "a flash that is being written it does not abandon: the command waits for its end. With "
    "--host\n"
    "the update goes on in the host, and the command says how to follow it.\n"
    "IMAGE is a file on the machine of the host then; a relative path is taken from the directory\n"
    "where this command runs.\n"
    "DURATION is a number of seconds, or has a unit: 500ms, 30s, 5m, 1h.\n"
    "\n"
    "With --json: {\"returnValue\", \"returnText\", \"job\"}, where job holds the properties of\n"
    "the finished Orvex_ConcreteJob, and is null when the update was refused.\n"
    "\n"
    "Examples:\n"
    "  quorvel update 0000:03:00.0 firmware.rom\n"
    "  quorvel update 0000:03:00 firmware.rom --types IMG_PXE+IMG_UEFI\n"
    "  quorvel update 0000:03:00 file:///srv/older.rom --force --json\n"
    "  quorvel update 0000:03:00 --identity firmware.rom\n"
    "  quorvel update 0000:03:00 firmware.rom --lock-timeout 30s\n"
    "  quorvel update 0000:03:00 /srv/firmware.rom --host https://admin@server1:5989\n";

struct Options {
  std::string target;
  std::string image;  // this one or the next is empty
  std::string identity;
  client::UpdateOptions update;
  bool isProgressHidden = false;
};

// What came of the call that starts an update.
struct Start {
  client::MethodAnswer answer;
  UpdateRequest request;
};

// Returns the path as the agent takes it. The directory that the process stands in may have a name
// that no text holds.
std::string nameExactly(const std::filesystem::path& path) {
  const std::optional<std::string> text = platform::toGenericText(path);
  if (!text) {
    throw client::Fault(
        "the path '" + platform::toShownText(path) +
        "' has characters that the code page of this system lacks; put the image into a "
        "directory with another name");
  }
  return *text;
}

// Schemes are the same in any case.
bool isFileUri(const std::string& image) {
  constexpr std::string_view kScheme = "FILE:";
  return utils::toUpper(image.substr(0, kScheme.size())) == kScheme;
}

std::filesystem::path makeAbsolute(const std::string& image) {
  std::error_code error;
  std::filesystem::path path = platform::makeAbsolute(platform::toPath(image), error);
  if (error) {
    throw client::Fault("the file '" + image + "' cannot be told from here: " + error.message() +
                        "; name it by its whole path");
  }
  return path;
}

Start startFromFile(client::Connection& connection, const Options& options,
                    const client::Target& target, const client::OnStart& onStart) {
  const bool isUri = isFileUri(options.image);
  const std::filesystem::path path = isUri ? std::filesystem::path() : makeAbsolute(options.image);
  const std::string uri = isUri ? options.image : "file://" + nameExactly(path);
  return {client::installFromUri(connection, uri, target.path, options.update, onStart),
          {platform::toShownText(path), !options.update.types.empty(), options.update.isForced,
           connection.isRemote(), std::nullopt, connection.program()}};
}

Start startFromIdentity(client::Connection& connection, const Options& options,
                        const client::Target& target, const client::OnStart& onStart) {
  const client::IdentityList list = client::readIdentities(connection);
  const client::Identity& identity = client::findIdentity(list, options.identity);
  return {
      client::installFromIdentity(connection, identity.path, target.path, options.update, onStart),
      requestIdentity(identity, options.update.isForced, connection)};
}

// Returns the path of the image, whichever way it was given.
std::string fileOf(const Options& options, const UpdateRequest& request) {
  return isFileUri(options.image) ? utils::Uri(options.image).getPath() : request.imagePath;
}

void reportEnd(const Context& context, const client::Connection& connection,
               const client::Target& target, const client::JobReport& job) {
  if (!job.isCompleted()) {
    context.err << "quorvel: update of " << target.label << " failed: " << job.outcome() << '\n';
    context.err << "  next: " << adviseOnFailure(job, connection) << '\n';
  } else if (!context.options.isJson) {
    context.out << "Completed: " << target.label << " is updated ("
                << utils::toClockText(job.elapsed) << ")\n";
  }
}

client::Value toJson(const client::MethodAnswer& answer,
                     const std::optional<client::JobReport>& job) {
  client::Value document;
  document.set("returnValue", answer.returnValue);
  document.set("returnText", answer.returnText);
  document.set("job", job ? propertiesOf(*job) : client::Value());
  return document;
}

ExitStatus update(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::Target target = client::findTarget(*connection, parseTarget(options.target));
  // Until the update starts, an interrupt ends the command at once, and there is no update. A
  // process that writes a flash must not be stopped: it would hold the machine's flash lock.
  std::optional<InterruptGuard> guard;
  const client::OnStart onStart = [&guard, &connection] {
    guard.emplace(connection->isRemote() ? Stops::Let : Stops::Held);
  };
  Start start = options.identity.empty() ? startFromFile(*connection, options, target, onStart)
                                         : startFromIdentity(*connection, options, target, onStart);

  std::optional<client::JobReport> job;
  if (start.answer.jobPath.empty()) {
    guard.value().yieldToInterrupt();
    if (!connection->isRemote()) {
      start.request.why =
          findLocalReason(target.label, fileOf(options, start.request), options.update.types);
    }
    reportRefusal(context, "update of " + target.label, start.answer, start.request);
  } else {
    ProgressView view(context.out, chooseProgressStyle(context.options, !options.isProgressHidden),
                      "updating " + target.label);
    job = waitForJob(*connection, start.answer.jobPath, view, guard.value(), context.err);
    reportEnd(context, *connection, target, *job);
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(start.answer, job));
  }
  return job && job->isCompleted() ? ExitStatus::Done : ExitStatus::Failed;
}

std::string refuseNoType(const std::string& text) {
  return text.empty() ? "must name a type" : "";
}

void demandOneImage(const Options& options) {
  if (options.image.empty() && options.identity.empty()) {
    Command::refuse("IMAGE or --identity is required: name the image to install");
  }
  if (!options.image.empty() && !options.identity.empty()) {
    Command::refuse("IMAGE and --identity exclude each other: name the image by one of them");
  }
  if (!options.identity.empty() && !options.update.types.empty()) {
    Command::refuse("--types goes with IMAGE, not with --identity: name the file as IMAGE");
  }
}

}  // namespace

void addUpdateCommand(CLI::App& program, Context& context) {
  Command command(program, "update", "Update the firmware of an adapter");
  const auto options = std::make_shared<Options>();
  command.add({"TARGET", "Port, adapter or object path", "", true}, options->target);
  command.add({"IMAGE", "File or file: URI of the firmware image"}, options->image);
  command.add(
      {"--identity", "Firmware file of 'quorvel identities'", "IDENTITY", false, host::refuseEmpty},
      options->identity);
  command.add({"--types", "Install these image types of the file only", "IMG_PXE+IMG_UEFI", false,
               refuseNoType},
              options->update.types);
  command.addFlag("--force", "Install older firmware, too", options->update.isForced);
  command.add(
      {"--lock-timeout", "Wait so long for the flash, whatever Timeout says; 0 does not wait",
       "DURATION", false, refuseNoDuration},
      context.options.lockTimeout);
  command.addFlag("--no-progress", "Print no progress", options->isProgressHidden);
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    demandOneImage(*options);
    context.command = [&context, options] { return update(context, *options); };
  });
}

}  // namespace cli
