#include "wbem/MethodOperations.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <variant>

#include "Os/QuorvelConfig.h"
#include "cimxml/AnswerWriter.h"
#include "cimxml/ObjectName.h"
#include "core/LookAhead.h"
#include "wbem/InstanceFinder.h"
#include "wbem/PropertyValues.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

const core::ParameterDeclaration* findParameter(const core::MethodDeclaration& method,
                                                const std::string& name) {
  const auto found = std::find_if(method.parameters.begin(), method.parameters.end(),
                                  [&name](const core::ParameterDeclaration& parameter) {
                                    return core::isSameName(parameter.name, name);
                                  });
  return found != method.parameters.end() ? &*found : nullptr;
}

[[noreturn]] void refuse(const core::MethodDeclaration& method, const std::string& name,
                         const std::string& reason) {
  throw StatusFault(Status::InvalidParameter, name + " of " + method.name + ": " + reason);
}

const core::MethodDeclaration& demandMethod(const core::ClassDeclaration& declaration,
                                            const cimxml::Request& request) {
  const core::MethodDeclaration* method = declaration.findMethod(request.name);
  if (method == nullptr) {
    throw StatusFault(Status::MethodNotFound,
                      "class " + declaration.name + " has no method '" + request.name + "'");
  }
  if (!request.target.isInstance) {
    throw StatusFault(Status::InvalidParameter, method->name + " is a method of instances of " +
                                                    declaration.name + ", not of the class");
  }
  return *method;
}

std::string idOf(core::CimInstance& instance) {
  const core::CimProperty* id = instance.getProperty("InstanceID");
  return id != nullptr && !id->isNull() ? id->toString() : instance.getPath();
}

// Returns the classes of the instances for which the method may ask the broker, by its arguments.
std::set<std::string> classesOf(const core::MethodDeclaration& method,
                                core::CimPropertyList& arguments) {
  std::set<std::string> names;
  for (const core::ParameterDeclaration& parameter : method.parameters) {
    const core::CimProperty* argument = arguments.get(parameter.name);
    if (argument == nullptr || argument->isNull() || argument->getType() != core::kCimReference) {
      continue;
    }
    if (const auto object = cimxml::readObjectPath(argument->toString()); object) {
      names.insert(object->className);
    }
  }
  return names;
}

void appendOutputs(const core::MethodDeclaration& method, core::CimPropertyList& outputs,
                   core::CimInstance* job, const Namespace& nameSpace, std::string& out) {
  for (const core::ParameterDeclaration& parameter : method.parameters) {
    if (parameter.direction == core::ParameterDirection::Job) {
      if (job != nullptr) {
        cimxml::appendReferenceParameter(out, parameter.name, *job, nameSpace.name());
      }
    } else if (parameter.direction == core::ParameterDirection::Out) {
      const core::CimProperty* value = outputs.get(parameter.name);
      if (value != nullptr && !value->isNull()) {
        cimxml::appendOutputParameter(out, *value, nameSpace.name());
      }
    }
  }
}

}  // namespace

MethodArguments::MethodArguments(const core::MethodDeclaration& method,
                                 const std::vector<cimxml::Parameter>& given,
                                 const Namespaces& namespaces) {
  const ValueContext context{method.name, Status::InvalidParameter, namespaces};
  for (const cimxml::Parameter& argument : given) {
    const core::ParameterDeclaration* parameter = findParameter(method, argument.name);
    if (parameter == nullptr) {
      refuse(method, argument.name, "there is no such argument");
    }
    if (parameter->direction != core::ParameterDirection::In) {
      // Some clients name the outputs too, without a value.
      if (!std::holds_alternative<std::monostate>(argument.value)) {
        refuse(method, parameter->name, "is an output argument");
      }
      continue;
    }
    if (m_in.list().get(parameter->name) != nullptr) {
      refuse(method, parameter->name, "is given twice");
    }
    demandType(context, parameter->name, parameter->type, argument.type);
    m_in.add(makeProperty(context, parameter->name, parameter->type, argument.value));
  }
  for (const core::ParameterDeclaration& parameter : method.parameters) {
    if (parameter.direction == core::ParameterDirection::Out) {
      m_out.add(makeProperty(context, parameter.name, parameter.type, cimxml::Value()));
    }
  }
}

void invokeMethod(const cimxml::Request& request, core::CimBroker& broker,
                  const Namespaces& namespaces, std::string& out, Invocation& invocation) {
  const Namespace& nameSpace = namespaces.demand(request.nameSpace);
  const core::ClassDeclaration& declaration = nameSpace.demandClass(request.target.className);
  const core::MethodDeclaration& method = demandMethod(declaration, request);
  MethodArguments arguments(method, request.parameters, namespaces);
  const InstanceFinder finder(namespaces, nameSpace, request.target);
  invocation.installation = describeInstallation(method.name, arguments.in());
  if (const std::string file = findFile(method.name, arguments.in()); !file.empty()) {
    utils::QuorvelConfig* const config = utils::QuorvelConfig::getInstance();
    config->askFirmwarePaths();  // whose silence the method would wait for where it needs a setting
    invocation.file = std::make_unique<os::FileAhead>(file, config->getMaxImageSize());
  }
  const os::FileAhead::InForce inForce(invocation.file.get());
  std::set<std::string> names = classesOf(method, arguments.in());
  names.merge(finder.classNames());
  const core::LookAhead ahead(broker, names);
  const core::CimBroker::Request brokerRequest(broker);
  if (invocation.installation) {
    fillInVersions(broker, *invocation.installation);
  }
  const auto invoke = [&](const ServedClass& /*served*/, core::CimInstance& instance) {
    if (!instance.hasMethod(method.name)) {
      throw StatusFault(Status::MethodNotAvailable,
                        "instances of " + declaration.name + " do not offer " + method.name);
    }
    core::CimInstance* job = nullptr;
    invocation.returnValue =
        instance.invokeMethod(method.name, &arguments.in(), &arguments.out(), &job);
    if (job != nullptr) {
      invocation.job = job->getPath();
    }
    if (job != nullptr && invocation.installation) {
      invocation.installation->job = idOf(*job);
    }
    cimxml::appendMethodReturnValue(out, *invocation.returnValue);
    appendOutputs(method, arguments.out(), job, nameSpace, out);
  };
  if (!finder.find(invoke)) {
    throw StatusFault(Status::NotFound,
                      "there is no instance " + cimxml::describeObject(request.target));
  }
}

}  // namespace wbem
