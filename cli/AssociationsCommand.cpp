#include "cli/AssociationsCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "client/Associations.h"
#include "client/ServedClasses.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "Shows each association that refers to the instance: its class, the name of the reference "
    "that\n"
    "leads here, and where its other references lead. Of an instance that is an association "
    "itself,\n"
    "it shows its own references, too.\n"
    "\n"
    "With --json: {\"path\", \"references\": [{\"role\", \"path\"}], \"associations\": "
    "[{\"class\",\n"
    "\"path\", \"role\", \"others\": [{\"role\", \"path\"}]}]}; references are those of the "
    "instance itself.\n"
    "\n"
    "Examples ('quorvel instances Orvex_EthernetPort' prints object paths):\n"
    "  quorvel associations \"$PORT\"\n"
    "  quorvel associations 'Orvex_RegisteredProfile.InstanceID=\"Orvex:SoftwareUpdate_Profile\"'\n"
    "  quorvel associations \"$PORT\" --json\n";

client::Value toJson(const std::vector<client::Reference>& references) {
  client::Value result = client::Value::array();
  for (const client::Reference& reference : references) {
    result.push(client::Value::object({{"role", reference.role}, {"path", reference.path}}));
  }
  return result;
}

client::Value toJson(const client::ObjectReferences& object) {
  client::Value document;
  document.set("path", object.path);
  document.set("references", toJson(object.own));
  client::Value associations = client::Value::array();
  for (const client::Association& association : object.associations) {
    associations.push(client::Value::object({{"class", association.className},
                                             {"path", association.path},
                                             {"role", association.role},
                                             {"others", toJson(association.others)}}));
  }
  document.set("associations", std::move(associations));
  return document;
}

// References under a heading, which says what they have in common.
struct Group {
  std::string heading;
  std::vector<client::Reference> references;
};

std::vector<Group> groupReferences(const client::ObjectReferences& object) {
  std::vector<Group> groups;
  if (!object.own.empty()) {
    groups.push_back({"refers to", object.own});
  }
  for (const client::Association& association : object.associations) {
    const std::string heading = "is the " + association.role + " of " + association.className;
    if (groups.empty() || groups.back().heading != heading) {
      groups.push_back({heading, {}});
    }
    std::vector<client::Reference>& references = groups.back().references;
    references.insert(references.end(), association.others.begin(), association.others.end());
  }
  return groups;
}

void printGroup(std::ostream& out, const Group& group) {
  // A host may name a class and its roles as it likes.
  std::vector<std::pair<std::string, std::string>> lines;
  std::size_t width = 0;
  for (const client::Reference& reference : group.references) {
    lines.emplace_back(utils::toPrintable(reference.role), utils::toPrintable(reference.path));
    width = std::max(width, lines.back().first.size());
  }
  out << utils::toPrintable(group.heading) << (lines.empty() ? "\n" : ":\n");
  for (const auto& [role, path] : lines) {
    out << "  " << role << std::string(width - role.size(), ' ') << " = " << path << '\n';
  }
}

void print(std::ostream& out, const client::ObjectReferences& object) {
  out << utils::toPrintable(object.path) << '\n';
  for (const Group& group : groupReferences(object)) {
    out << '\n';
    printGroup(out, group);
  }
  if (object.associations.empty()) {
    out << "\nNothing refers to this instance.\n";
  }
}

ExitStatus showAssociations(const Context& context, const std::string& text) {
  const core::CimPath path = client::parseObjectPath(text);
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  const client::ObjectReferences object = client::findReferences(*connection, path);
  if (context.options.isJson) {
    printJson(context.out, toJson(object));
  } else {
    print(context.out, object);
  }
  return ExitStatus::Done;
}

}  // namespace

void addAssociationsCommand(CLI::App& program, Context& context) {
  Command command(program, "associations",
                  "Show what refers to a CIM instance, and what that leads to");
  const auto path = std::make_shared<std::string>();
  command.add({"OBJECTPATH", "The instance, as 'quorvel instances' prints it", "", true}, *path);
  command.setFooter(kFooter);
  command.onChosen([&context, path] {
    context.command = [&context, path] { return showAssociations(context, *path); };
  });
}

}  // namespace cli
