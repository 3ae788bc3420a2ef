#include "cli/CheckCommand.h"

#include <memory>
#include <string>
#include <vector>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/LocalReason.h"
#include "cli/Refusal.h"
#include "cli/Session.h"
#include "cli/TargetName.h"
#include "client/Identities.h"
#include "client/IdentityCheck.h"
#include "client/InstallationService.h"
#include "client/Target.h"
#include "client/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "TARGET is a port (0000:03:00.0), an adapter (0000:03:00) or the object path of either.\n"
    "IDENTITY is one of the files that 'quorvel identities' lists: its path, its name where no\n"
    "other file has that, its InstanceID or its object path. Nothing is installed.\n"
    "Of a host (--host) it is asked how the file compares with the adapter, which reserves "
    "nothing. "
    "With\n"
    "--reserve the host's method CheckSoftwareIdentity is called: the host then keeps the target "
    "of a\n"
    "check that passes reserved, and refuses every update, until it is restarted.\n"
    "\n"
    "With --json: {\"returnValue\", \"returnText\", \"installCharacteristics\": [NUMBER]}, where 7 "
    "is\n"
    "'no reboot required'; there are none when the check is refused. Of a host, without "
    "--reserve,\n"
    "{\"returnValue\", \"returnText\", \"comparison\"}: newer, same version, same, older, other "
    "types,\n"
    "not updatable, not for it or unknown.\n"
    "\n"
    "Examples:\n"
    "  quorvel check 0000:03:00 firmware.rom\n"
    "  quorvel check 0000:03:00.0 /srv/firmware/firmware.rom --json\n"
    "  quorvel check 0000:03:00 firmware.rom --host https://admin@server1:5989\n";

struct Options {
  std::string target;
  std::string identity;
  bool isReserving = false;
};

client::Value toJson(const client::CheckAnswer& answer) {
  client::Value document;
  document.set("returnValue", answer.call.returnValue);
  document.set("returnText", answer.call.returnText);
  document.set("installCharacteristics", answer.characteristics);
  return document;
}

std::string nameOfCheck(const client::Target& target, const client::Identity& identity) {
  return "check of " + utils::toPrintable(identity.label()) + " for " + target.label;
}

void reportSuccess(const Context& context, const client::Target& target,
                   const client::Identity& identity, const client::CheckAnswer& answer) {
  std::vector<std::string> meanings;
  for (const std::uint16_t number : answer.characteristics) {
    meanings.push_back(client::describeCharacteristic(number));
  }
  context.out << utils::toPrintable(identity.label()) << " can be installed on " << target.label
              << ": " << client::join(meanings, ", ") << '\n';
}

// Asks the host for what it has compared.
ExitStatus compare(const Context& context, client::Connection& connection,
                   const client::Target& target, const client::Identity& identity) {
  const client::IdentityCheck check = client::compareIdentity(connection, identity, target.path);
  const bool isPassed = check.answer.isAccepted();
  if (!isPassed) {
    reportRefusal(context, nameOfCheck(target, identity), check.answer,
                  requestIdentity(identity, false, connection));
  } else if (!context.options.isJson) {
    context.out << utils::toPrintable(identity.label()) << " can be installed on " << target.label
                << ": " << check.comparison << '\n';
  }
  if (context.options.isJson) {
    client::Value document;
    document.set("returnValue", check.answer.returnValue);
    document.set("returnText", check.answer.returnText);
    document.set("comparison", check.comparison);
    printJson(context.out, document);
  }
  return isPassed ? ExitStatus::Done : ExitStatus::Failed;
}

ExitStatus check(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::Target target = client::findTarget(*connection, parseTarget(options.target));
  const client::IdentityList list = client::readIdentities(*connection);
  const client::Identity& identity = client::findIdentity(list, options.identity);
  if (connection->isRemote() && !options.isReserving) {
    return compare(context, *connection, target, identity);
  }
  const client::CheckAnswer answer = client::checkIdentity(*connection, identity.path, target.path);

  const bool isPassed = answer.call.isAccepted();
  if (!isPassed) {
    UpdateRequest request = requestIdentity(identity, false, *connection);
    if (!connection->isRemote()) {
      request.why = findLocalReason(target.label, request.imagePath, "");
    }
    reportRefusal(context, nameOfCheck(target, identity), answer.call, request);
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
  Command command(program, "check", "Ask whether a firmware file could be installed");
  const auto options = std::make_shared<Options>();
  command.add({"TARGET", "Port, adapter or object path", "", true}, options->target);
  command.add({"IDENTITY", "The firmware file", "", true}, options->identity);
  command.addFlag("--reserve", "Have the host reserve the target", options->isReserving);
  command.showOnlyWithHosts("--reserve");
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    if (options->isReserving && context.options.host.empty()) {
      Command::refuse("--reserve goes with --host: without it nothing stays reserved");
    }
    context.command = [&context, options] { return check(context, *options); };
  });
}

}  // namespace cli
