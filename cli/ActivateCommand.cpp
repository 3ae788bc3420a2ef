#include "cli/ActivateCommand.h"

#include <memory>
#include <string>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/Duration.h"
#include "cli/FlashLock.h"
#include "cli/Interrupt.h"
#include "cli/JsonOutput.h"
#include "cli/LocalTarget.h"
#include "cli/Session.h"
#include "client/Fault.h"
#include "client/Value.h"
#include "midapi/MidApi.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "TARGET is an adapter (0000:03:00) or a port of it (0000:03:00.0).\n"
    "What an update stores takes effect later with most adapters. Where the driver can put it "
    "into\n"
    "force now this command has it do that: the adapter's interfaces may go away for some "
    "seconds,\n"
    "and with them what uses them. Else it says what it takes, and changes nothing.\n"
    "While another program writes firmware the command waits, as an update does.\n"
    "DURATION is a number of seconds, or has a unit: 500ms, 30s, 5m, 1h.\n"
    "\n"
    "The exit status is 0 when what is stored is in force, else 1.\n"
    "\n"
    "With --json: {\"adapter\", \"active\", \"text\"}; text is what happened or what it takes.\n"
    "\n"
    "Examples:\n"
    "  quorvel activate 0000:03:00\n"
    "  quorvel activate 0000:03:00 --lock-timeout 5m --json\n";

ma::Activation activateWithLock(const std::string& adapter) {
  const FlashLock lock("activation of " + adapter);
  // A driver that begins goes on, whoever has asked it.
  const InterruptGuard guard(Stops::Held);
  ma::Activation activation;
  std::string error;
  if (!ma::activateFirmware(adapter, activation, error)) {
    throw client::Fault("activation of " + adapter + " failed: " + utils::toPrintable(error));
  }
  return activation;
}

ExitStatus activate(const Context& context, const std::string& target) {
  if (!context.options.host.empty()) {
    throw client::Fault("'activate' does not go with --host: it asks the drivers of this machine",
                        client::Fault::Kind::Usage);
  }
  demandConsistent(context.options);
  applyOptions(context.options);
  const std::string adapter = adapterOfPort(findLocalPort(target));
  const ma::Activation activation = activateWithLock(adapter);
  if (context.options.isJson) {
    client::Value document;
    document.set("adapter", adapter);
    document.set("active", activation.isActive);
    document.set("text", activation.text);
    printJson(context.out, document);
  } else if (activation.isActive) {
    context.out << adapter << ": " << utils::toPrintable(activation.text) << '\n';
  }
  if (!activation.isActive) {
    context.err << "quorvel: the firmware that " << adapter
                << " has stored was not put into force: " << utils::toPrintable(activation.text)
                << '\n';
  }
  return activation.isActive ? ExitStatus::Done : ExitStatus::Failed;
}

}  // namespace

void addActivateCommand(CLI::App& program, Context& context) {
  Command command(program, "activate", "Put stored firmware into force, or say what that takes");
  const auto target = std::make_shared<std::string>();
  command.add({"TARGET", "Port or adapter", "", true}, *target);
  command.add(
      {"--lock-timeout", "Wait so long for the flash, whatever Timeout says; 0 does not wait",
       "DURATION", false, refuseNoDuration},
      context.options.lockTimeout);
  command.setFooter(kFooter);
  command.onChosen([&context, target] {
    context.command = [&context, target] { return activate(context, *target); };
  });
}

}  // namespace cli
