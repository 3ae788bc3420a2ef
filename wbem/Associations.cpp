#include "wbem/Associations.h"

#include <utility>

#include "wbem/Status.h"

namespace wbem {
namespace {

[[noreturn]] void refuse(const char* parameter, const std::string& reason) {
  throw StatusFault(Status::InvalidParameter,
                    "parameter " + std::string(parameter) + ": " + reason);
}

const core::ClassDeclaration* findAnywhere(const Namespaces& namespaces,
                                           std::string_view className) {
  const core::ClassDeclaration* found = namespaces.agents().schema().find(className);
  return found != nullptr ? found : namespaces.interop().schema().find(className);
}

const core::ClassDeclaration* readClass(const OperationCall& call, const char* parameter) {
  const std::optional<std::string> className = call.parameters.getClassName(parameter);
  if (!className) {
    return nullptr;
  }
  const core::ClassDeclaration* declaration = findAnywhere(call.namespaces, *className);
  if (declaration == nullptr) {
    refuse(parameter, "there is no class '" + *className + "'");
  }
  return declaration;
}

std::string readRole(const OperationCall& call, const char* parameter) {
  return call.parameters.getString(parameter).value_or("");
}

bool isWanted(const std::string& role, const core::PropertyDeclaration& property) {
  return role.empty() || core::isSameName(role, property.name);
}

bool isWanted(const core::CimSchema& schema, const AssociationFilter& filter,
              const core::ClassDeclaration& declaration) {
  return declaration.isAssociation &&
         (filter.association == nullptr || schema.isA(declaration.name, filter.association->name));
}

// A reference that no class is fixed for may lead anywhere.
bool mayHold(const core::CimSchema& schema, const core::PropertyDeclaration& property,
             const core::ClassDeclaration& source) {
  return property.type == core::kCimReference &&
         (property.referenceClass.empty() || schema.isA(source.name, property.referenceClass));
}

const core::CimPropertyRef* findReference(core::CimInstance& instance, const std::string& name) {
  const core::CimProperty* property = instance.getProperty(name);
  return property != nullptr && property->getType() == core::kCimReference && !property->isNull()
             ? static_cast<const core::CimPropertyRef*>(property)
             : nullptr;
}

}  // namespace

AssociationFilter readAssociatorFilter(const OperationCall& call) {
  return {readClass(call, "AssocClass"), readClass(call, "ResultClass"), readRole(call, "Role"),
          readRole(call, "ResultRole")};
}

AssociationFilter readReferenceFilter(const OperationCall& call) {
  return {readClass(call, "ResultClass"), nullptr, readRole(call, "Role"), {}};
}

std::vector<AssociationRoles> findRoles(const OperationCall& call,
                                        const core::ClassDeclaration& source,
                                        const AssociationFilter& filter) {
  const core::CimSchema& schema = call.nameSpace.schema();
  std::vector<AssociationRoles> found;
  for (const ServedClass* served : call.nameSpace.served()) {
    const core::ClassDeclaration& declaration = *served->declaration;
    if (!isWanted(schema, filter, declaration)) {
      continue;
    }
    std::vector<const core::PropertyDeclaration*> roles;
    for (const core::PropertyDeclaration& role : declaration.properties) {
      if (isWanted(filter.role, role) && mayHold(schema, role, source)) {
        roles.push_back(&role);
      }
    }
    if (!roles.empty()) {
      found.push_back({served, std::move(roles)});
    }
  }
  return found;
}

void visitReferences(const std::vector<AssociationRoles>& associations,
                     const cimxml::ObjectName& object,
                     const std::function<void(const ReferenceHit&)>& visit) {
  for (const AssociationRoles& wanted : associations) {
    wanted.served->visitInstances([&](core::CimInstance& association) {
      for (const core::PropertyDeclaration* role : wanted.roles) {
        const core::CimPropertyRef* reference = findReference(association, role->name);
        if (reference != nullptr && leadsTo(*reference, object)) {
          visit({*wanted.served, association, *role});
        }
      }
      return true;
    });
  }
}

void visitOtherEnds(const ReferenceHit& hit, const AssociationFilter& filter,
                    const std::function<void(const core::CimPropertyRef&)>& visit) {
  for (const core::PropertyDeclaration& end : hit.served.declaration->properties) {
    if (end.type != core::kCimReference || &end == &hit.role || !isWanted(filter.resultRole, end)) {
      continue;
    }
    if (const core::CimPropertyRef* reference = findReference(hit.association, end.name)) {
      visit(*reference);
    }
  }
}

bool isResult(const Namespaces& namespaces, const AssociationFilter& filter,
              const std::string& className) {
  return filter.result == nullptr ||
         namespaces.homeOf(className).schema().isA(className, filter.result->name);
}

void visitClassReferences(const core::CimSchema& schema, const core::ClassDeclaration& source,
                          const AssociationFilter& filter,
                          const std::function<void(const core::ClassDeclaration&,
                                                   const core::PropertyDeclaration&)>& visit) {
  for (const core::ClassDeclaration* association : schema.getDescendants("")) {
    if (!isWanted(schema, filter, *association)) {
      continue;
    }
    for (const core::PropertyDeclaration& role : association->properties) {
      if (!role.referenceClass.empty() && isWanted(filter.role, role) &&
          mayHold(schema, role, source)) {
        visit(*association, role);
      }
    }
  }
}

}  // namespace wbem
