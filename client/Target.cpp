#include "client/Target.h"

#include <optional>
#include <utility>

#include "Utils/Printable.h"
#include "client/ClassNames.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"
#include "core/CimPath.h"

namespace client {
namespace {

constexpr const char* kIdentifier = "DeviceID";

// Returns the instance's identifier, empty when it has none.
std::string identifierOf(const InstanceSnapshot& instance) {
  return instance.value<std::string>(kIdentifier);
}

std::optional<InstanceSnapshot> findByIdentifier(Connection& connection, const char* className,
                                                 const std::string& identifier) {
  for (InstanceSnapshot& instance : getInstances(connection, className)) {
    if (identifierOf(instance) == identifier) {
      return std::move(instance);
    }
  }
  return std::nullopt;
}

std::optional<InstanceSnapshot> findInstance(Connection& connection, const TargetName& name) {
  switch (name.kind) {
    case TargetKind::Port:
      return findByIdentifier(connection, kPortClass, name.text);
    case TargetKind::Adapter:
      return findByIdentifier(connection, kAdapterClass, name.text);
    case TargetKind::ObjectPath:
      return connection.findInstance(core::CimPath(name.text).getModelPath());
    case TargetKind::Unknown:
      break;
  }
  return std::nullopt;
}

void appendIdentifiers(std::string& text, Connection& connection, const char* className,
                       const char* heading) {
  std::string identifiers;
  for (const InstanceSnapshot& instance : getInstances(connection, className)) {
    identifiers += " " + utils::toPrintable(identifierOf(instance));
  }
  if (!identifiers.empty()) {
    text += std::string("\n  ") + heading + identifiers;
  }
}

std::string describeTargets(Connection& connection) {
  std::string text;
  appendIdentifiers(text, connection, kAdapterClass, "adapters:");
  appendIdentifiers(text, connection, kPortClass, "ports:   ");
  if (!text.empty()) {
    return "; there are" + text;
  }
  return connection.isRemote()
             ? "; the host has no adapters"
             : "; there are no adapters here (see --adapters and 'quorvel adapters')";
}

}  // namespace

Target findTarget(Connection& connection, const TargetName& name) {
  const std::optional<InstanceSnapshot> instance = findInstance(connection, name);
  if (!instance) {
    throw Fault("there is no adapter or port '" + name.given + "'" + describeTargets(connection));
  }
  Target target{instance->path, utils::toPrintable(identifierOf(*instance))};
  if (target.label.empty()) {
    target.label = utils::toPrintable(target.path);
  }
  return target;
}

}  // namespace client
