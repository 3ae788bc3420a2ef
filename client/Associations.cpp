#include "client/Associations.h"

#include <utility>

#include "client/ServedClasses.h"

namespace client {
namespace {

std::vector<Reference> getReferences(const InstanceSnapshot& instance) {
  std::vector<Reference> references;
  for (const PropertySnapshot& property : instance.properties) {
    if (property.kind == PropertySnapshot::Kind::Reference && property.value.text() != nullptr) {
      references.push_back({property.name, *property.value.text()});
    }
  }
  return references;
}

void appendReferencesTo(std::vector<Association>& associations, const std::string& path,
                        const InstanceSnapshot& instance) {
  const std::vector<Reference> references = getReferences(instance);
  for (std::size_t i = 0; i < references.size(); ++i) {
    if (references[i].path == path) {
      std::vector<Reference> others = references;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
      associations.push_back(
          {instance.className, instance.path, references[i].role, std::move(others)});
    }
  }
}

}  // namespace

ObjectReferences findReferences(Connection& connection, const core::CimPath& path) {
  ObjectReferences result;
  const InstanceSnapshot instance = demandInstance(connection, path);
  result.path = instance.path;
  result.own = getReferences(instance);
  for (const InstanceSnapshot& candidate : connection.findReferencing(result.path)) {
    appendReferencesTo(result.associations, result.path, candidate);
  }
  return result;
}

}  // namespace client
