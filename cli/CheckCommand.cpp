#include "cli/CheckCommand.h"

#include <memory>
#include <string>
#include <vector>

#include "cli/Identities.h"
#include "cli/InstallationService.h"
#include "cli/Output.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "cli/Target.h"
#include "cli/TextTable.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "TARGET is a port (0000:03:00.0), an adapter (0000:03:00) or the object path of either.\n"
    "IDENTITY is one of the files that 'quorvel identities' lists: its path, its name where no\n"
    "other file has that, its InstanceID or its object path. Nothing is installed.\n"
    "A host (--host) keeps the target of a check that passes reserved, and refuses every update, "
    "until\n"
    "it is restarted; without --host nothing stays reserved.\n"
    "\n"
    "With --json: {\"returnValue\", \"returnText\", \"installCharacteristics\": [NUMBER]}, where 7 "
    "is\n"
    "'no reboot required'; there are none when the check is refused.\n"
    "\n"
    "Examples:\n"
    "  quorvel check 0000:03:00 firmware.rom\n"
    "  quorvel check 0000:03:00.0 /srv/firmware/firmware.rom --json\n"
    "  quorvel check 0000:03:00 firmware.rom --host https://admin@server1:5989\n";

struct Options {
  std::string target;
  std::string identity;
};

Json toJson(const CheckAnswer& answer) {
  Json document;
  document["returnValue"] = answer.call.returnValue;
  document["returnText"] = answer.call.returnText;
  document["installCharacteristics"] = answer.characteristics;
  return document;
}

void reportSuccess(const Context& context, const Target& target, const Identity& identity,
                   const CheckAnswer& answer) {
  std::vector<std::string> meanings;
  for (const std::uint16_t number : answer.characteristics) {
    meanings.push_back(describeCharacteristic(number));
  }
  context.out << toPrintable(identity.label()) << " can be installed on " << target.label << ": "
              << join(meanings, ", ") << '\n';
}

ExitStatus check(const Context& context, const Options& options) {
  const std::unique_ptr<Connection> connection = openConnection(context.options);
  const Target target = findTarget(*connection, options.target);
  const IdentityList list = readIdentities(*connection);
  const Identity& identity = findIdentity(list, options.identity);
  const CheckAnswer answer = checkIdentity(*connection, identity.path, target.path);

  const bool isPassed = answer.call.isAccepted();
  if (!isPassed) {
    reportRefusal(context, "check of " + toPrintable(identity.label()) + " for " + target.label,
                  answer.call, requestIdentity(identity, false, *connection));
  } else if (!context.options.isJson) {
    reportSuccess(context, target, identity, answer);
  }
  if (isPassed && connection->isRemote()) {
    context.err
        << "quorvel: note: the host keeps " << target.label
        << " reserved for this installation and refuses every update until it is restarted\n";
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(answer));
  }
  return isPassed ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace

void addCheckCommand(CLI::App& program, Context& context) {
  CLI::App* command =
      program.add_subcommand("check", "Ask whether a firmware file could be installed");
  const auto options = std::make_shared<Options>();
  command->add_option("TARGET", options->target, "Port, adapter or object path")
      ->type_name("")
      ->required();
  command->add_option("IDENTITY", options->identity, "The firmware file")
      ->type_name("")
      ->required();
  command->footer(kFooter);
  command->callback([&context, options] {
    context.command = [&context, options] { return check(context, *options); };
  });
}

}  // namespace cli
