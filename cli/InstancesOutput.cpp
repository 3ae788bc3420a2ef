#include "cli/InstancesOutput.h"

#include <map>
#include <optional>
#include <utility>

#include "Utils/Printable.h"
#include "cli/JsonOutput.h"
#include "cli/Output.h"

namespace cli {
namespace {

// What there is to say of the classes of instances, asked for once each.
class Descriptions {
 public:
  // Without a connection nothing is known of any.
  explicit Descriptions(client::Connection* connection) : m_connection(connection) {}

  // Returns null for a class of which nothing is known.
  [[nodiscard]] const client::ClassDescription* find(const std::string& className) {
    if (m_connection == nullptr) {
      return nullptr;
    }
    const auto [entry, isNew] = m_descriptions.try_emplace(className);
    if (isNew) {
      entry->second = m_connection->findClass(className);
    }
    return entry->second ? &*entry->second : nullptr;
  }

 private:
  client::Connection* const m_connection;
  std::map<std::string, std::optional<client::ClassDescription>> m_descriptions;
};

// Returns {NAME: name or names} of the properties whose numbers have names.
client::Value namesOf(const client::InstanceSnapshot& instance,
                      const client::ClassDescription* described) {
  client::Value names = client::Value::object();
  for (const client::PropertySnapshot& property : instance.properties) {
    const client::ElementDescription* element =
        described != nullptr ? described->findProperty(property.name) : nullptr;
    const client::Value found =
        element != nullptr ? client::findNames(element->values, property.value) : client::Value();
    if (!found.isNull()) {
      names.set(property.name, found);
    }
  }
  return names;
}

client::Value toJson(const client::Instances& instances, client::NullProperties nulls,
                     client::Connection* namesFrom) {
  Descriptions descriptions(namesFrom);
  client::Value document = client::Value::array();
  for (const client::InstanceSnapshot& instance : instances) {
    client::Value shown = client::toValue(instance, nulls);
    if (namesFrom != nullptr) {
      shown.set("names", namesOf(instance, descriptions.find(instance.className)));
    }
    document.push(std::move(shown));
  }
  return document;
}

}  // namespace

void printInstances(const Context& context, const client::Instances& instances,
                    client::NullProperties nulls, const std::string& whenNone,
                    client::Connection* namesFrom) {
  if (context.options.isJson) {
    printJson(context.out, toJson(instances, nulls, namesFrom));
    return;
  }
  if (instances.empty()) {
    context.out << utils::toPrintable(whenNone) << '\n';
  }
  Descriptions descriptions(namesFrom);
  bool isFirst = true;
  for (const client::InstanceSnapshot& instance : instances) {
    context.out << (isFirst ? "" : "\n") << utils::toPrintable(instance.path) << '\n';
    printProperties(context.out, instance.properties, nulls, descriptions.find(instance.className));
    isFirst = false;
  }
}

}  // namespace cli
