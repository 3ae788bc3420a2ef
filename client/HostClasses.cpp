#include "client/HostClasses.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "core/ClassDeclaration.h"

namespace client {
namespace {

using Qualifiers = std::vector<cimxml::ClassValue::Qualifier>;

const cimxml::ClassValue::Qualifier* find(const Qualifiers& qualifiers, std::string_view name) {
  const auto found = std::find_if(qualifiers.begin(), qualifiers.end(),
                                  [name](const cimxml::ClassValue::Qualifier& candidate) {
                                    return core::isSameName(candidate.name, name);
                                  });
  return found != qualifiers.end() ? &*found : nullptr;
}

std::string textOf(const Qualifiers& qualifiers, std::string_view name) {
  const cimxml::ClassValue::Qualifier* found = find(qualifiers, name);
  return found != nullptr && !found->values.empty() ? found->values.front().value_or("")
                                                    : std::string();
}

bool isTrue(const Qualifiers& qualifiers, std::string_view name) {
  return core::isSameName(textOf(qualifiers, name), "true");
}

NamedValues valuesOf(const Qualifiers& qualifiers) {
  const cimxml::ClassValue::Qualifier* map = find(qualifiers, "ValueMap");
  const cimxml::ClassValue::Qualifier* names = find(qualifiers, "Values");
  NamedValues values;
  for (std::size_t index = 0; names != nullptr && index < names->values.size(); ++index) {
    if (map == nullptr) {
      values.emplace_back(std::to_string(index), names->values[index].value_or(""));
    } else if (index < map->values.size()) {
      values.emplace_back(map->values[index].value_or(""), names->values[index].value_or(""));
    }
  }
  return values;
}

ElementDescription describe(const cimxml::ClassValue::Property& element) {
  ElementDescription described;
  described.name = element.name;
  described.type = toTypeText(element.type, element.isArray, element.referenceClass);
  described.isKey = isTrue(element.qualifiers, "Key");
  described.isOutput = isTrue(element.qualifiers, "Out");
  described.description = textOf(element.qualifiers, "Description");
  described.units = textOf(element.qualifiers, "Units");
  described.values = valuesOf(element.qualifiers);
  return described;
}

}  // namespace

ClassDescription describeClass(const cimxml::ClassValue& declaration) {
  ClassDescription described;
  described.name = declaration.name;
  described.superclass = declaration.superclass;
  described.isAssociation = isTrue(declaration.qualifiers, "Association");
  described.isAbstract = isTrue(declaration.qualifiers, "Abstract");
  described.version = textOf(declaration.qualifiers, "Version");
  described.description = textOf(declaration.qualifiers, "Description");
  for (const cimxml::ClassValue::Property& property : declaration.properties) {
    described.properties.push_back(describe(property));
  }
  for (const cimxml::ClassValue::Method& method : declaration.methods) {
    MethodDescription& added =
        described.methods.emplace_back(MethodDescription{method.name,
                                                         method.type,
                                                         textOf(method.qualifiers, "Description"),
                                                         valuesOf(method.qualifiers),
                                                         {}});
    for (const cimxml::ClassValue::Property& parameter : method.parameters) {
      added.parameters.push_back(describe(parameter));
    }
  }
  return described;
}

}  // namespace client
