#include "inventory/Orvex_ElementSoftwareIdentity.h"

#include <map>
#include <utility>
#include <vector>

#include "core/CimBroker.h"
#include "inventory/Adapters.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ElementSoftwareIdentity"};

using inventory::Adapter;
using inventory::AdapterSoftware;

// The controllers, and the adapter of each at the same place.
struct Controllers {
  std::vector<core::CimInstance*> instances;
  std::vector<Adapter> adapters;
};

// Returns the controllers that the broker serves, without one whose adapter is gone by now.
Controllers findControllers() {
  std::map<std::string, Adapter> adapters;
  for (Adapter& adapter : inventory::findAdapters()) {
    adapters.emplace(adapter.identity, std::move(adapter));
  }
  Controllers controllers;
  for (core::CimInstance* instance :
       core::GetCimBroker().getInstances(Orvex_PortController::kClassName)) {
    const auto* controller = dynamic_cast<Orvex_PortController*>(instance);
    const auto adapter =
        controller != nullptr ? adapters.find(controller->DeviceID.getValue()) : adapters.end();
    if (adapter != adapters.end()) {
      controllers.instances.push_back(instance);
      controllers.adapters.push_back(adapter->second);
    }
  }
  return controllers;
}

}  // namespace

Orvex_ElementSoftwareIdentity::Orvex_ElementSoftwareIdentity(core::CimInstance* software,
                                                             core::CimInstance* controller,
                                                             const std::string& comparison) {
  Antecedent.setTarget(software);
  Dependent.setTarget(controller);
  core::markKeys(*this);
  Comparison.setValue(comparison);
}

Orvex_ElementSoftwareIdentityClass::Orvex_ElementSoftwareIdentityClass(platform::Clock& clock)
    : InstanceProvider(Orvex_ElementSoftwareIdentity::kClassName,
                       {kLog, "Orvex_ElementSoftwareIdentityClass::getInstances", "getInstances",
                        "ElementSoftwareIdentity::getInstances"}),
      m_clock(clock) {}

void Orvex_ElementSoftwareIdentityClass::refresh() {
  instances().clear();
  // Once for each class: asking again would end the instances that the associations refer to.
  core::InstanceList::Iterator identities =
      core::GetCimBroker().getInstances(Orvex_SoftwareIdentity::kClassName);
  const Controllers controllers = findControllers();
  const platform::Clock::TimePoint deadline = m_clock.now() + kPatience;
  std::size_t uncompared = 0;
  for (core::CimInstance* identity : identities) {
    const auto* software = dynamic_cast<AdapterSoftware*>(identity);
    if (software == nullptr) {
      continue;
    }
    std::vector<std::string> comparisons(controllers.adapters.size(),
                                         inventory::kUnknownComparison);
    if (software->getImageKind() != Orvex_SoftwareIdentity::kFirmwareImage ||
        m_clock.now() < deadline) {
      comparisons = software->compareWith(controllers.adapters);
    } else {
      ++uncompared;
    }
    for (std::size_t i = 0; i < comparisons.size(); ++i) {
      if (!comparisons[i].empty()) {
        instances().add(
            new Orvex_ElementSoftwareIdentity(identity, controllers.instances[i], comparisons[i]));
      }
    }
  }
  report(uncompared);
}

void Orvex_ElementSoftwareIdentityClass::report(std::size_t uncompared) {
  if (uncompared > 0 && !m_isReported) {
    utils::logError(kLog, "Orvex_ElementSoftwareIdentityClass::getInstances",
                    "%d firmware files were not compared with the adapters, since that took longer "
                    "than %d s; keep fewer or smaller ones in the directories of FWFilePath",
                    static_cast<int>(uncompared), static_cast<int>(kPatience.count()));
  }
  m_isReported = uncompared > 0;
}
