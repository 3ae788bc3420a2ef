#include "tests/modules/Client.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "cli/Output.h"
#include "core/CimBroker.h"
#include "core/CimPropertyTypes.h"

namespace test {
namespace {

// Returns a text as it is, anything else as the command line prints it.
std::string valueOf(const core::CimProperty& property) {
  const auto* text = dynamic_cast<const core::CimPropertyString*>(&property);
  return text != nullptr ? text->getValue() : cli::toText(client::snapshotOf(property));
}

InstanceReport report(core::CimInstance& instance) {
  InstanceReport report{instance.getPath(), {}};
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    report.properties.push_back({property->getName(), property->getType(), property->isKey(),
                                 property->isNull(), valueOf(*property)});
  }
  return report;
}

}  // namespace

const std::string& InstanceReport::get(const std::string& name) const {
  const auto found =
      std::find_if(properties.begin(), properties.end(),
                   [&name](const PropertyReport& property) { return property.name == name; });
  if (found == properties.end()) {
    throw std::runtime_error(path + " has no property " + name);
  }
  return found->value;
}

std::vector<std::string> InstanceReport::references() const {
  std::vector<std::string> paths;
  for (const PropertyReport& property : properties) {
    if (property.type == core::kCimReference) {
      paths.push_back(property.value);
    }
  }
  return paths;
}

std::vector<std::int64_t> numbersIn(const std::string& value) {
  std::vector<std::int64_t> numbers;
  const char* const end = value.data() + value.size();
  for (const char* place = value.data(); place != end;) {
    std::int64_t number = 0;
    const auto [next, error] = std::from_chars(place, end, number);
    if (error == std::errc()) {
      numbers.push_back(number);
    }
    place = error == std::errc() ? next : place + 1;
  }
  return numbers;
}

std::vector<std::string> servedClasses() {
  std::vector<std::string> classes;
  for (const core::CimAgent* agent : core::GetCimBroker().getAgents()) {
    for (std::string& name : agent->getClassNames()) {
      if (std::find(classes.begin(), classes.end(), name) == classes.end()) {
        classes.push_back(std::move(name));
      }
    }
  }
  return classes;
}

std::vector<InstanceReport> enumerate(const std::string& className) {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  std::vector<InstanceReport> reports;
  for (core::CimInstance* instance : broker.getInstances(className)) {
    reports.push_back(report(*instance));
  }
  return reports;
}

std::vector<std::string> enumerate(const std::string& className, const std::string& property) {
  std::vector<std::string> values;
  for (const InstanceReport& instance : enumerate(className)) {
    values.push_back(instance.get(property));
  }
  return values;
}

std::optional<InstanceReport> resolve(const std::string& path) {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  core::CimInstance* instance = broker.getInstanceByPath(core::CimPath(path));
  if (instance == nullptr) {
    return std::nullopt;
  }
  return report(*instance);
}

}  // namespace test
