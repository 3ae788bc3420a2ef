#include "client/ServedClasses.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "Utils/Exception.h"
#include "Utils/Printable.h"
#include "client/Fault.h"
#include "core/ClassDeclaration.h"

namespace client {
namespace {

[[noreturn]] void refuseClass(const ServingAgents& served, const std::string& className) {
  std::string text = "no class '" + className + "' is served here; the classes are:";
  for (const auto& [name, agents] : served) {
    text += "\n  " + utils::toPrintable(name);
  }
  throw Fault(text);
}

}  // namespace

Instances getInstances(Connection& connection, const std::string& className) {
  return connection.findInstances(className).value_or(Instances());
}

Instances demandInstances(Connection& connection, const std::string& className) {
  std::optional<Instances> instances = connection.findInstances(className);
  if (!instances) {
    refuseClass(connection.getClasses(), className);
  }
  return std::move(*instances);
}

ClassDescription demandClass(Connection& connection, const std::string& className) {
  std::optional<ClassDescription> description = connection.findClass(className);
  if (!description) {
    const ServingAgents served = connection.getClasses();
    if (std::any_of(served.begin(), served.end(), [&className](const auto& entry) {
          return core::isSameName(entry.first, className);
        })) {
      throw Fault("class '" + className + "' is served, but its agent does not declare what it is");
    }
    refuseClass(served, className);
  }
  return std::move(*description);
}

core::CimPath parseObjectPath(const std::string& text) {
  try {
    return core::CimPath(text);
  } catch (const utils::ESyntaxError&) {
    throw Fault("'" + text + "' is no object path; write CLASS.KEY=VALUE,... as " +
                    "'quorvel instances' prints it",
                Fault::Kind::Usage);
  }
}

InstanceSnapshot demandInstance(Connection& connection, const core::CimPath& path) {
  std::optional<InstanceSnapshot> instance = connection.findInstance(path.getModelPath());
  if (!instance) {
    refuseMissing(connection, path.getModelPath());
  }
  return std::move(*instance);
}

void refuseMissing(Connection& connection, const std::string& path) {
  const std::string className = core::CimPath(path).getClassName();
  static_cast<void>(demandInstances(connection, className));
  throw Fault("there is no instance " + path + "; '" + connection.program() + " instances " +
              className + "' shows what there is");
}

}  // namespace client
