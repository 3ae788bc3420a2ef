#include "cli/DescribeCommand.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "Utils/Printable.h"
#include "cli/Command.h"
#include "cli/JsonOutput.h"
#include "cli/Session.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"
#include "core/ClassDeclaration.h"

namespace cli {
namespace {

constexpr const char* kFooter =
    "CLASS may be any class that is declared, one above those that are served, too; 'quorvel "
    "classes'\n"
    "lists those that are served. With NAME, the property or method of that name alone.\n"
    "\n"
    "With --json: {\"class\", \"superclass\", \"isAssociation\", \"isAbstract\", \"version\",\n"
    "\"description\", \"properties\": [{\"name\", \"type\", \"isKey\", \"description\", "
    "\"units\",\n"
    "\"values\": [{\"value\", \"name\"}]}], \"methods\": [{\"name\", \"type\", \"description\", "
    "\"returns\",\n"
    "\"parameters\": [{\"name\", \"type\", \"isOutput\", \"description\", \"units\", "
    "\"values\"}]}]}; what "
    "is not\n"
    "known is null.\n"
    "\n"
    "Examples:\n"
    "  quorvel describe Orvex_EthernetPort\n"
    "  quorvel describe CIM_ConcreteJob JobState\n"
    "  quorvel describe CIM_ConcreteJob --json\n"
    "  quorvel describe Orvex_SoftwareIdentity --host http://127.0.0.1:5988\n";

constexpr std::string_view kIndent = "  ";

struct Options {
  std::string className;
  std::string element;  // empty: all
};

// ---- for programs

client::Value toJson(const client::NamedValues& values) {
  client::Value list = client::Value::array();
  for (const auto& [value, name] : values) {
    list.push(client::Value::object({{"value", value}, {"name", name}}));
  }
  return list;
}

client::Value toText(const std::string& text) {
  return text.empty() ? client::Value() : client::Value(text);
}

// `flag` names what is told of the element: whether it is a key, or an output.
client::Value toJson(const client::ElementDescription& element, const char* flag, bool isSet) {
  return client::Value::object({{"name", element.name},
                                {"type", element.type},
                                {flag, isSet},
                                {"description", toText(element.description)},
                                {"units", toText(element.units)},
                                {"values", toJson(element.values)}});
}

client::Value toJson(const client::ClassDescription& description) {
  client::Value properties = client::Value::array();
  for (const client::ElementDescription& property : description.properties) {
    properties.push(toJson(property, "isKey", property.isKey));
  }
  client::Value methods = client::Value::array();
  for (const client::MethodDescription& method : description.methods) {
    client::Value parameters = client::Value::array();
    for (const client::ElementDescription& parameter : method.parameters) {
      parameters.push(toJson(parameter, "isOutput", parameter.isOutput));
    }
    methods.push(client::Value::object({{"name", method.name},
                                        {"type", method.type},
                                        {"description", toText(method.description)},
                                        {"returns", toJson(method.returns)},
                                        {"parameters", parameters}}));
  }
  return client::Value::object({{"class", description.name},
                                {"superclass", toText(description.superclass)},
                                {"isAssociation", description.isAssociation},
                                {"isAbstract", description.isAbstract},
                                {"version", toText(description.version)},
                                {"description", toText(description.description)},
                                {"properties", properties},
                                {"methods", methods}});
}

// ---- for people

class Page {
 public:
  explicit Page(std::ostream& out) : m_out(out) {}

  void print(const client::ClassDescription& description) {
    std::string kind = description.isAbstract ? ", abstract" : "";
    kind += description.isAssociation ? ", association" : "";
    kind += description.version.empty() ? "" : ", version " + description.version;
    printLine(0, description.name +
                     (description.superclass.empty() ? "" : " : " + description.superclass) + kind);
    printText(1, description.description);
    for (const client::ElementDescription& property : description.properties) {
      m_out << '\n';
      print(0, property, property.isKey ? ", key" : "");
    }
    for (const client::MethodDescription& method : description.methods) {
      m_out << '\n';
      print(method);
    }
  }

 private:
  void print(const client::MethodDescription& method) {
    printLine(0, method.type + " " + method.name + "()");
    printText(1, method.description);
    printValues(1, "returns ", method.returns);
    for (const client::ElementDescription& parameter : method.parameters) {
      print(1, parameter, parameter.isOutput ? ", out" : ", in");
    }
  }

  void print(unsigned depth, const client::ElementDescription& element, const char* kind) {
    printLine(depth, element.type + " " + element.name + kind +
                         (element.units.empty() ? "" : ", in " + element.units));
    printText(depth + 1, element.description);
    printValues(depth + 1, "", element.values);
  }

  void printValues(unsigned depth, const std::string& intro, const client::NamedValues& values) {
    std::string text = intro;
    const char* separator = "";
    for (const auto& [value, name] : values) {
      text += separator;
      text += value;
      text += " = ";
      text += name;
      separator = ", ";
    }
    printText(depth, values.empty() ? "" : text);
  }

  void printText(unsigned depth, const std::string& text) {
    if (!text.empty()) {
      printLine(depth, text);
    }
  }

  void printLine(unsigned depth, const std::string& text) {
    for (unsigned level = 0; level < depth; ++level) {
      m_out << kIndent;
    }
    m_out << utils::toPrintable(text) << '\n';
  }

  std::ostream& m_out;
};

// Leaves the elements of that name alone. Throws Fault when there is none.
void choose(client::ClassDescription& description, const std::string& name) {
  const auto isOther = [&name](const auto& element) {
    return !core::isSameName(element.name, name);
  };
  std::string names;
  for (const client::ElementDescription& property : description.properties) {
    names += "\n  " + utils::toPrintable(property.name);
  }
  for (const client::MethodDescription& method : description.methods) {
    names += "\n  " + utils::toPrintable(method.name) + "()";
  }
  std::erase_if(description.properties, isOther);
  std::erase_if(description.methods, isOther);
  if (description.properties.empty() && description.methods.empty()) {
    throw client::Fault("class " + utils::toPrintable(description.name) +
                        " has no property or method '" + name + "'; it has:" + names);
  }
}

ExitStatus showClass(const Context& context, const Options& options) {
  const std::unique_ptr<client::Connection> connection = openConnection(context.options);
  client::ClassDescription description = client::demandClass(*connection, options.className);
  if (!options.element.empty()) {
    choose(description, options.element);
  }
  if (context.options.isJson) {
    printJson(context.out, toJson(description));
  } else {
    Page(context.out).print(description);
  }
  return ExitStatus::Done;
}

}  // namespace

void addDescribeCommand(CLI::App& program, Context& context) {
  Command command(program, "describe",
                  "Show what a CIM class, its properties and their values stand for");
  const auto options = std::make_shared<Options>();
  command.add({"CLASS", "Name of the class", "", true}, options->className);
  command.add({"NAME", "Name of a property or method (all)"}, options->element);
  command.setFooter(kFooter);
  command.onChosen([&context, options] {
    context.command = [&context, options] { return showClass(context, *options); };
  });
}

}  // namespace cli
