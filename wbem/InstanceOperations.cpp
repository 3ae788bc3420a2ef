#include "wbem/InstanceOperations.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cimxml/AnswerWriter.h"
#include "core/LookAhead.h"
#include "core/OwningPropertyList.h"
#include "wbem/InstanceFinder.h"
#include "wbem/PropertyValues.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

void answer(const OperationCall& call, Form form) {
  InstanceResults results(call, form, readPropertyChoice(call.parameters), call.out);
  cimxml::beginReturnValue(call.out);
  collectInstances(call, results);
  cimxml::endReturnValue(call.out);
}

[[noreturn]] void refuseMissing(const cimxml::ObjectName& name) {
  throw StatusFault(Status::NotFound, "there is no instance " + cimxml::describeObject(name));
}

const core::PropertyDeclaration& demandProperty(const core::ClassDeclaration& declaration,
                                                const std::string& name) {
  const core::PropertyDeclaration* property = declaration.findProperty(name);
  if (property == nullptr) {
    throw StatusFault(Status::NoSuchProperty,
                      "class " + declaration.name + " has no property '" + name + "'");
  }
  return *property;
}

// Fills the list with what a request gives: the properties of the instance that it sends, or those
// of them that it lists. A listed one that it does not send becomes NULL.
void readNewValues(const OperationCall& call, const core::ClassDeclaration& declaration,
                   core::OwningPropertyList& values) {
  const cimxml::InstanceValue& instance = call.parameters.demandInstance("ModifiedInstance");
  const auto listed = call.parameters.getStrings("PropertyList");
  const auto names = call.parameters.getNames("PropertyList");
  const ValueContext context{declaration.name, Status::TypeMismatch, call.namespaces};
  std::set<const core::PropertyDeclaration*> seen;
  for (const cimxml::PropertyValue& given : instance.properties) {
    const core::PropertyDeclaration& property = demandProperty(declaration, given.name);
    if (!seen.insert(&property).second) {
      throw StatusFault(Status::InvalidParameter, "property " + property.name + " is given twice");
    }
    if (names && !names->has(given.name)) {
      continue;
    }
    demandType(context, property.name, property.type, given.type);
    values.add(makeProperty(context, property.name, property.type, given.value));
  }
  if (!listed) {
    return;
  }
  for (const std::string& name : *listed) {
    const core::PropertyDeclaration& property = demandProperty(declaration, name);
    if (values.list().get(property.name) == nullptr) {
      values.add(makeProperty(context, property.name, property.type, cimxml::Value()));
    }
  }
}

}  // namespace

void collectInstances(const OperationCall& call, InstanceResults& results) {
  const std::string className = call.parameters.demandClassName("ClassName");
  if (!call.parameters.getBoolean("DeepInheritance", true)) {
    results.setAncestor(call.nameSpace.demandClass(className));
  }
  collectInstancesOf(call, className, results);
}

void collectInstancesOf(const OperationCall& call, const std::string& className,
                        InstanceResults& results) {
  const std::vector<const ServedClass*> classes = call.nameSpace.demandServedBelow(className);
  std::set<std::string> names;
  for (const ServedClass* served : classes) {
    names.insert(served->declaration->name);
  }
  const core::LookAhead ahead(call.broker, names);
  const core::CimBroker::Request request(call.broker);
  for (const ServedClass* served : classes) {
    served->visitInstances([&](core::CimInstance& instance) {
      results.add(call.nameSpace, *served, instance);
      return true;
    });
  }
}

void enumerateInstances(const OperationCall& call) {
  answer(call, Form::NamedInstance);
}

void enumerateInstanceNames(const OperationCall& call) {
  answer(call, Form::InstanceName);
}

void getInstance(const OperationCall& call) {
  const cimxml::ObjectName& name = call.parameters.demandInstanceName("InstanceName");
  InstanceResults results(call, Form::Instance, readPropertyChoice(call.parameters), call.out);
  const InstanceFinder finder(call.namespaces, call.nameSpace, name);
  cimxml::beginReturnValue(call.out);
  {
    const core::LookAhead ahead(call.broker, finder.classNames());
    const core::CimBroker::Request request(call.broker);
    const bool isFound = finder.find([&](const ServedClass& served, core::CimInstance& instance) {
      results.add(call.nameSpace, served, instance);
    });
    if (!isFound) {
      refuseMissing(name);
    }
  }
  cimxml::endReturnValue(call.out);
}

void modifyInstance(const OperationCall& call) {
  const cimxml::ObjectName& name = call.parameters.demandInstance("ModifiedInstance").name;
  static_cast<void>(call.parameters.getBoolean("IncludeQualifiers", true));
  const core::ClassDeclaration& declaration = call.nameSpace.demandClass(name.className);
  core::OwningPropertyList values;
  readNewValues(call, declaration, values);
  const InstanceFinder finder(call.namespaces, call.nameSpace, name);
  const core::LookAhead ahead(call.broker, finder.classNames());
  const core::CimBroker::Request request(call.broker);
  const bool isFound =
      finder.find([&values](const ServedClass& /*served*/, core::CimInstance& instance) {
        instance.modify(values.list());
      });
  if (!isFound) {
    refuseMissing(name);
  }
}

}  // namespace wbem
