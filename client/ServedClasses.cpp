#include "client/ServedClasses.h"

#include <optional>
#include <utility>

#include "Utils/Exception.h"
#include "Utils/Printable.h"
#include "client/Fault.h"

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
