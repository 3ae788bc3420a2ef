#include "wbem/AssociationOperations.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cimxml/AnswerWriter.h"
#include "core/LookAhead.h"
#include "wbem/Associations.h"
#include "wbem/InstanceFinder.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

using Collect = void (*)(const OperationCall& call, InstanceResults& results);

void answer(const OperationCall& call, Form form, Collect collect) {
  InstanceResults results(call, form, readPropertyChoice(call.parameters), call.out);
  cimxml::beginReturnValue(call.out);
  collect(call, results);
  cimxml::endReturnValue(call.out);
}

const cimxml::ObjectName& demandObject(const OperationCall& call, Form form) {
  const bool isPulled = form == Form::InstanceWithPath || form == Form::InstancePath;
  return isPulled ? call.parameters.demandInstanceName("InstanceName")
                  : call.parameters.demandObjectName("ObjectName");
}

// Looked for before the associations are: their enumeration may end its instance.
void demandInstance(const InstanceFinder& finder, const cimxml::ObjectName& object) {
  if (!finder.find([](const ServedClass&, core::CimInstance&) {})) {
    throw StatusFault(Status::NotFound, "there is no instance " + cimxml::describeObject(object));
  }
}

// Classes, each once, in the order in which they came.
class ClassSet {
 public:
  void add(const core::ClassDeclaration* declaration) {
    if (std::find(m_classes.begin(), m_classes.end(), declaration) == m_classes.end()) {
      m_classes.push_back(declaration);
    }
  }
  void addTo(InstanceResults& results) const {
    for (const core::ClassDeclaration* declaration : m_classes) {
      results.addClass(*declaration);
    }
  }

 private:
  std::vector<const core::ClassDeclaration*> m_classes;
};

void collectReferencingClasses(const OperationCall& call, const core::ClassDeclaration& source,
                               const AssociationFilter& filter, InstanceResults& results) {
  ClassSet classes;
  visitClassReferences(
      call.nameSpace.schema(), source, filter,
      [&classes](const core::ClassDeclaration& association,
                 const core::PropertyDeclaration& /*role*/) { classes.add(&association); });
  classes.addTo(results);
}

void collectAssociatedClasses(const OperationCall& call, const core::ClassDeclaration& source,
                              const AssociationFilter& filter, InstanceResults& results) {
  const core::CimSchema& schema = call.nameSpace.schema();
  ClassSet classes;
  visitClassReferences(
      schema, source, filter,
      [&](const core::ClassDeclaration& association, const core::PropertyDeclaration& role) {
        for (const core::PropertyDeclaration& end : association.properties) {
          const core::ClassDeclaration* other = schema.find(end.referenceClass);
          const bool isWanted =
              &end != &role && other != nullptr &&
              (filter.resultRole.empty() || core::isSameName(filter.resultRole, end.name)) &&
              (filter.result == nullptr || schema.isA(other->name, filter.result->name));
          if (isWanted) {
            classes.add(other);
          }
        }
      });
  classes.addTo(results);
}

// Returns the classes that are enumerated to find the object and the associations.
std::set<std::string> namesOf(const InstanceFinder& finder,
                              const std::vector<AssociationRoles>& associations) {
  std::set<std::string> names = finder.classNames();
  for (const AssociationRoles& association : associations) {
    names.insert(association.served->declaration->name);
  }
  return names;
}

// Adds an instance that the association holds itself.
void addTarget(const OperationCall& call, const AssociationFilter& filter,
               core::CimInstance& target, InstanceResults& results) {
  const std::string className = target.getClassName();
  const Namespace& home = call.namespaces.homeOf(className);
  const ServedClass* served = home.findServed(className);
  if (served != nullptr && isResult(call.namespaces, filter, className)) {
    results.add(home, *served, target);
  }
}

// Adds an instance of which the association holds the path. One that is gone is no result.
void addNamed(const OperationCall& call, const AssociationFilter& filter,
              const cimxml::ObjectName& name, InstanceResults& results) {
  const Namespace& home = call.namespaces.homeOf(name.className);
  if (home.findServed(name.className) == nullptr ||
      !isResult(call.namespaces, filter, name.className)) {
    return;
  }
  static_cast<void>(
      home.withInstance(name, [&](const ServedClass& served, core::CimInstance& instance) {
        results.add(home, served, instance);
      }));
}

}  // namespace

void collectReferences(const OperationCall& call, InstanceResults& results) {
  const cimxml::ObjectName& object = demandObject(call, results.form());
  const core::ClassDeclaration& source = call.nameSpace.demandClass(object.className);
  const AssociationFilter filter = readReferenceFilter(call);
  if (!object.isInstance) {
    collectReferencingClasses(call, source, filter, results);
    return;
  }
  results.passOverRepeated();
  const InstanceFinder finder(call.namespaces, call.nameSpace, object);
  const std::vector<AssociationRoles> associations = findRoles(call, source, filter);
  const core::LookAhead ahead(call.broker, namesOf(finder, associations));
  const core::CimBroker::Request request(call.broker);
  demandInstance(finder, object);
  visitReferences(associations, object, [&](const ReferenceHit& hit) {
    results.add(call.nameSpace, hit.served, hit.association);
  });
}

void collectAssociators(const OperationCall& call, InstanceResults& results) {
  const cimxml::ObjectName& object = demandObject(call, results.form());
  const core::ClassDeclaration& source = call.nameSpace.demandClass(object.className);
  const AssociationFilter filter = readAssociatorFilter(call);
  if (!object.isInstance) {
    collectAssociatedClasses(call, source, filter, results);
    return;
  }
  results.passOverRepeated();
  const InstanceFinder finder(call.namespaces, call.nameSpace, object);
  const std::vector<AssociationRoles> associations = findRoles(call, source, filter);
  const core::LookAhead ahead(call.broker, namesOf(finder, associations));
  const core::CimBroker::Request request(call.broker);
  demandInstance(finder, object);
  // Looked up when all associations are done with: an enumeration of their class may end targets.
  std::vector<cimxml::ObjectName> named;
  visitReferences(associations, object, [&](const ReferenceHit& hit) {
    visitOtherEnds(hit, filter, [&](const core::CimPropertyRef& reference) {
      if (core::CimInstance* target = reference.getTarget(); target != nullptr) {
        addTarget(call, filter, *target, results);
      } else if (auto name = cimxml::readObjectPath(reference.toString())) {
        named.push_back(std::move(*name));
      }
    });
  });
  for (const cimxml::ObjectName& name : named) {
    addNamed(call, filter, name, results);
  }
}

void references(const OperationCall& call) {
  answer(call, Form::ObjectWithPath, collectReferences);
}

void referenceNames(const OperationCall& call) {
  answer(call, Form::ObjectPath, collectReferences);
}

void associators(const OperationCall& call) {
  answer(call, Form::ObjectWithPath, collectAssociators);
}

void associatorNames(const OperationCall& call) {
  answer(call, Form::ObjectPath, collectAssociators);
}

}  // namespace wbem
