#include "agent/InstallSteps.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "agent/Instances.h"
#include "cim/InstallOptions.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentityResource.h"

namespace agent {
namespace {

constexpr cim::InstallOption kUnsupportedOptions[] = {
    cim::kDeferTargetReset, cim::kInstall,    cim::kRepair,
    cim::kReboot,           cim::kPassword,   cim::kUninstall,
    cim::kLogOption,        cim::kSilentMode, cim::kAdministrativeMode,
};

std::string getFirstPort(core::CimInstance& instance) {
  const auto* controller = dynamic_cast<Orvex_PortController*>(&instance);
  if (controller != nullptr) {
    for (const Orvex_EthernetPort* port : findInstancesOf<Orvex_EthernetPort>()) {
      if (controller->ownsPort(*port)) {
        return port->getIdentity();
      }
    }
  }
  return {};
}

std::string getPort(core::CimInstance& instance) {
  const auto* port = dynamic_cast<Orvex_EthernetPort*>(&instance);
  return port != nullptr ? port->getIdentity() : std::string();
}

struct TargetClass {
  std::string_view name;
  std::string (*getIdentity)(core::CimInstance& instance);
};

constexpr TargetClass kTargetClasses[] = {
    {Orvex_PortController::kClassName, getFirstPort},
    {Orvex_EthernetPort::kClassName, getPort},
};

}  // namespace

void expectValues(std::initializer_list<const core::CimProperty*> arguments) {
  for (const core::CimProperty* argument : arguments) {
    if (argument->isNull()) {
      throw utils::EUnspecifiedError(utils::format("%s argument is set to NULL. It is not allowed",
                                                   argument->getName().c_str()));
    }
  }
}

bool areOptionsSupported(const std::vector<std::uint16_t>& options) {
  return cim::hasOption(options, cim::kUpdate) &&
         std::none_of(
             std::begin(kUnsupportedOptions), std::end(kUnsupportedOptions),
             [&options](cim::InstallOption option) { return cim::hasOption(options, option); });
}

std::optional<std::string> findTargetPort(core::CimInstance& target) {
  const std::string className = target.getClassName();
  const auto* targetClass =
      std::find_if(std::begin(kTargetClasses), std::end(kTargetClasses),
                   [&](const TargetClass& candidate) { return candidate.name == className; });
  if (targetClass == std::end(kTargetClasses)) {
    return std::nullopt;
  }
  return targetClass->getIdentity(target);
}

std::string findResourceUri(const std::string& fileId) {
  std::string uri;
  for (const auto* resource : findInstancesOf<Orvex_SoftwareIdentityResource>()) {
    if (resource->getFirmwareFileID() == fileId) {
      uri = resource->AccessInfo.getValue();
    }
  }
  return uri;
}

std::string join(const std::vector<std::string>& texts, char separator) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += separator + text;
  }
  return joined.empty() ? joined : joined.substr(1);
}

}  // namespace agent
