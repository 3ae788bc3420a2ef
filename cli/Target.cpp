#include "cli/Target.h"

#include "Utils/Exception.h"
#include "cli/Context.h"
#include "core/CimPath.h"
#include "midapi/AdapterId.h"

namespace cli {
namespace {

constexpr const char* kPortClass = "Orvex_EthernetPort";
constexpr const char* kAdapterClass = "Orvex_PortController";
constexpr const char* kIdentifier = "DeviceID";

// Returns the instance's identifier, empty when it has none.
std::string identifierOf(core::CimInstance& instance) {
  const core::CimProperty* property = instance.getProperty(kIdentifier);
  return property != nullptr && !property->isNull() ? property->toString() : "";
}

core::CimInstance* findByIdentifier(core::CimBroker& broker, const char* className,
                                    const std::string& identifier) {
  for (core::CimInstance* instance : broker.getInstances(className)) {
    if (identifierOf(*instance) == identifier) {
      return instance;
    }
  }
  return nullptr;
}

core::CimInstance* findInstance(core::CimBroker& broker, const TargetName& name) {
  switch (name.kind) {
    case TargetKind::Port:
      return findByIdentifier(broker, kPortClass, name.text);
    case TargetKind::Adapter:
      return findByIdentifier(broker, kAdapterClass, name.text);
    case TargetKind::ObjectPath:
      return broker.getInstanceByPath(core::CimPath(name.text));
    case TargetKind::Unknown:
      break;
  }
  return nullptr;
}

void appendIdentifiers(std::string& text, core::CimBroker& broker, const char* className,
                       const char* heading) {
  std::string identifiers;
  for (core::CimInstance* instance : broker.getInstances(className)) {
    identifiers += " " + identifierOf(*instance);
  }
  if (!identifiers.empty()) {
    text += std::string("\n  ") + heading + identifiers;
  }
}

std::string describeTargets(core::CimBroker& broker) {
  std::string text;
  appendIdentifiers(text, broker, kAdapterClass, "adapters:");
  appendIdentifiers(text, broker, kPortClass, "ports:   ");
  return text.empty() ? "; there are no adapters here (see --adapters and 'quorvel adapters')"
                      : "; there are" + text;
}

bool isObjectPath(const std::string& text) {
  try {
    return !core::CimPath(text).getClassName().empty();
  } catch (const utils::ESyntaxError&) {
    return false;
  }
}

}  // namespace

TargetName parseTarget(const std::string& text) {
  if (const auto port = ma::parsePortId(text)) {
    return {TargetKind::Port, ma::toString(*port)};
  }
  if (const auto adapter = ma::parseAdapterAddress(text)) {
    return {TargetKind::Adapter, ma::toString(*adapter)};
  }
  return {isObjectPath(text) ? TargetKind::ObjectPath : TargetKind::Unknown, text};
}

Target findTarget(core::CimBroker& broker, const std::string& text) {
  core::CimInstance* instance = findInstance(broker, parseTarget(text));
  if (instance == nullptr) {
    throw Fault("there is no adapter or port '" + text + "'" + describeTargets(broker));
  }
  Target target{instance->getPath(), identifierOf(*instance)};
  if (target.label.empty()) {
    target.label = target.path;
  }
  return target;
}

}  // namespace cli
