#include "cli/IdentitiesCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/LocalWords.h"
#include "cli/Session.h"
#include "cli/TextTable.h"
#include "client/Identities.h"
#include "client/Texts.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "Firmware files are looked for in the directories that the configuration names (FWFilePath =\n"
    "DIR;DIR). A file that is passed over is named on standard error, with the reason\n"
    "(where --log-level is not 0).\n"
    "\n"
    "STATE says what the file is to the adapter:\n"
    "  newer, older   of a newer or an older version than what is installed\n"
    "  same           the bytes that are installed\n"
    "  same version   the installed version in other bytes\n"
    "  other types    its image types are not those installed; 'quorvel update' with --types says\n"
    "                 which to install\n"
    "  not updatable  the firmware of the adapter cannot be replaced\n"
    "  not for it     made for other devices\n"
    "  unknown        the flash of the adapter could not be read\n"
    "\n"
    "With --json: [{\"file\", \"instanceId\", \"path\", \"version\", \"types\", \"devices\",\n"
    "\"adapters\": [{\"adapter\", \"state\"}]}]; path is the object path, devices are PCI\n"
    "vendor:device.\n"
    "\n"
    "Examples:\n"
    "  quorvel identities\n"
    "  quorvel identities --config ./quorvel.conf --json\n";

client::Value toJson(const std::vector<client::ComparedIdentity>& files) {
  client::Value document = client::Value::array();
  for (const auto& [identity, adapters] : files) {
    client::Value entry;
    entry.set("file", identity.name);
    entry.set("instanceId", identity.instanceId);
    entry.set("path", identity.path);
    entry.set("version", identity.version);
    entry.set("types", identity.types);
    entry.set("devices", identity.devices);
    client::Value comparisons = client::Value::array();
    for (const auto& [adapter, state] : adapters) {
      comparisons.push(client::Value::object({{"adapter", adapter}, {"state", state}}));
    }
    entry.set("adapters", std::move(comparisons));
    document.push(std::move(entry));
  }
  return document;
}

bool isForNoneOfSeveral(const client::ComparedIdentity& file) {
  const std::vector<client::Comparison>& adapters = file.adapters;
  return adapters.size() > 1 &&
         std::all_of(adapters.begin(), adapters.end(), [](const client::Comparison& comparison) {
           return comparison.state == client::kNotForAdapter;
         });
}

// Directories hold files for many devices, of which a machine has a few: those that are for none of
// its adapters have one line each. The others have a line for each adapter.
void printComparisons(std::ostream& out, const std::vector<client::ComparedIdentity>& files) {
  const std::vector<client::Comparison> forNone = {{"all", client::kNotForAdapter}};
  TextTable table({"IDENTITY", "VERSION", "TYPES", "ADAPTER", "STATE"});
  for (const client::ComparedIdentity& file : files) {
    const client::Identity& identity = file.identity;
    for (const auto& [adapter, state] : isForNoneOfSeveral(file) ? forNone : file.adapters) {
      table.addRow(
          {identity.name, identity.version, client::join(identity.types, "+"), adapter, state});
    }
  }
  table.print(out);
}

void printFiles(std::ostream& out, const std::vector<client::ComparedIdentity>& files) {
  TextTable table({"IDENTITY", "VERSION", "TYPES", "DEVICES"});
  for (const auto& [identity, adapters] : files) {
    table.addRow({identity.name, identity.version, client::join(identity.types, "+"),
                  client::join(identity.devices, ", ")});
  }
  table.print(out);
  out << "There are no adapters to compare them with.\n";
}

void print(const Context& context, const std::vector<client::ComparedIdentity>& files,
           const std::string& configurationPlace) {
  if (files.empty()) {
    context.out << "No firmware file was found. FWFilePath in "
                << utils::toPrintable(configurationPlace)
                << toLocalWords(
                       " names the directories to look in, separated by ';' (FWFilePath = "
                       "/srv/firmware); one that does not exist is passed over.\n");
  } else if (files.front().adapters.empty()) {
    printFiles(context.out, files);
  } else {
    printComparisons(context.out, files);
  }
}

ExitStatus showIdentities(const Context& context) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::IdentityList list = client::readIdentities(*connection);
  for (const std::string& message : list.skipped) {
    context.err << "skipped: " << utils::toPrintable(message) << '\n';
  }
  const std::vector<client::ComparedIdentity> files =
      client::compareFiles(*connection, list.identities);
  if (context.options.isJson) {
    printJson(context.out, toJson(files));
  } else {
    print(context, files,
          connection->isRemote() ? "the configuration of the host"
                                 : getConfigurationPlace(context.options));
  }
  return ExitStatus::Done;
}

}  // namespace

void addIdentitiesCommand(CLI::App& program, Context& context) {
  Command command(program, "identities", "Show the firmware files that can be installed");
  command.setFooter(kFooter);
  command.onChosen(
      [&context] { context.command = [&context] { return showIdentities(context); }; });
}

}  // namespace cli
