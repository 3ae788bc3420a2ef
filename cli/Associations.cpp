#include "cli/Associations.h"

#include "cli/ServedClasses.h"

namespace cli {
namespace {

std::vector<Reference> getReferences(core::CimInstance& instance) {
  std::vector<Reference> references;
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    if (property->getType() == core::kCimReference && !property->isNull()) {
      references.push_back({property->getName(), property->toString()});
    }
  }
  return references;
}

void appendReferencesTo(std::vector<Association>& associations, const std::string& path,
                        core::CimInstance& instance) {
  const std::vector<Reference> references = getReferences(instance);
  for (std::size_t i = 0; i < references.size(); ++i) {
    if (references[i].path == path) {
      std::vector<Reference> others = references;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
      associations.push_back(
          {instance.getClassName(), instance.getPath(), references[i].role, std::move(others)});
    }
  }
}

}  // namespace

ObjectReferences findReferences(core::CimBroker& broker, const core::CimPath& path) {
  ObjectReferences result;
  core::CimInstance& instance = demandInstance(broker, path);
  result.path = instance.getPath();
  result.own = getReferences(instance);
  for (const auto& [className, agents] : getServingAgents(broker)) {
    for (core::CimInstance* candidate : broker.getInstances(className)) {
      appendReferencesTo(result.associations, result.path, *candidate);
    }
  }
  return result;
}

}  // namespace cli
