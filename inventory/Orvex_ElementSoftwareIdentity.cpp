#include "inventory/Orvex_ElementSoftwareIdentity.h"

#include <algorithm>
#include <vector>

#include "core/CimBroker.h"
#include "inventory/Adapters.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ElementSoftwareIdentity"};

using inventory::Adapter;
using inventory::AdapterSoftware;

// Returns the adapter of a controller, null when it is gone by now.
const Adapter* findAdapter(const std::vector<Adapter>& adapters, core::CimInstance& instance) {
  const auto* controller = dynamic_cast<Orvex_PortController*>(&instance);
  const auto found =
      std::find_if(adapters.begin(), adapters.end(), [controller](const Adapter& adapter) {
        return controller != nullptr && adapter.identity == controller->DeviceID.getValue();
      });
  return found != adapters.end() ? &*found : nullptr;
}

}  // namespace

Orvex_ElementSoftwareIdentity::Orvex_ElementSoftwareIdentity(core::CimInstance* software,
                                                             core::CimInstance* controller,
                                                             const std::string& comparison) {
  Antecedent.setTarget(software);
  Antecedent.setKey();
  Dependent.setTarget(controller);
  Dependent.setKey();
  Comparison.setValue(comparison);
}

Orvex_ElementSoftwareIdentityClass::Orvex_ElementSoftwareIdentityClass()
    : InstanceProvider(Orvex_ElementSoftwareIdentity::kClassName,
                       {kLog, "Orvex_ElementSoftwareIdentityClass::getInstances", "getInstances",
                        "ElementSoftwareIdentity::getInstances"}) {}

void Orvex_ElementSoftwareIdentityClass::refresh() {
  instances().clear();
  core::CimBroker& broker = core::GetCimBroker();
  const std::vector<core::CimInstance*> identities =
      broker.getInstances(Orvex_SoftwareIdentity::kClassName);
  const std::vector<core::CimInstance*> controllers =
      broker.getInstances(Orvex_PortController::kClassName);
  const std::vector<Adapter> adapters = inventory::findAdapters();
  for (core::CimInstance* identity : identities) {
    const auto* software = dynamic_cast<AdapterSoftware*>(identity);
    for (core::CimInstance* controller : controllers) {
      const Adapter* adapter = findAdapter(adapters, *controller);
      if (software == nullptr || adapter == nullptr) {
        continue;
      }
      const std::string comparison = software->compareWith(*adapter);
      if (!comparison.empty()) {
        instances().add(new Orvex_ElementSoftwareIdentity(identity, controller, comparison));
      }
    }
  }
}
