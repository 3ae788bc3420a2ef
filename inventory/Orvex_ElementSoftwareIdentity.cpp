#include "inventory/Orvex_ElementSoftwareIdentity.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "cim/ElementSoftware.h"
#include "core/CimBroker.h"
#include "core/LookAhead.h"
#include "inventory/Adapters.h"
#include "inventory/Orvex_SoftwareIdentityClass.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ElementSoftwareIdentity"};

using inventory::Adapter;
using inventory::AdapterSoftware;
using inventory::AdapterState;
using inventory::FirmwareComparisons;
using inventory::FirmwareFilePtr;

// Indexed by ma::ImageComparison.
constexpr std::array<std::string_view, 8> kComparisonTexts = {
    "", "not updatable", "other types", "older", "same version", "same", "newer", "unknown"};

// What software of these comparisons is to an adapter in the words of DMTF. Of the others nothing
// is known, or there is no word.
struct Status {
  std::string_view comparison;
  std::uint16_t number;
};
constexpr Status kStatuses[] = {
    {"installed", cim::kSoftwareInstalled}, {"running", cim::kSoftwareCurrent},
    {"stored", cim::kSoftwareNext},         {"newer", cim::kSoftwareAvailable},
    {"same", cim::kSoftwareAvailable},      {"same version", cim::kSoftwareAvailable},
    {"older", cim::kSoftwareAvailable},     {"other types", cim::kSoftwareAvailable},
};

// The controllers, and the adapter of each at the same place.
struct Controllers {
  std::vector<Orvex_PortController*> instances;
  std::vector<Adapter> adapters;
  std::map<std::string, std::size_t> places;  // by the adapter's identity
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
    auto* controller = dynamic_cast<Orvex_PortController*>(instance);
    const auto adapter =
        controller != nullptr ? adapters.find(controller->DeviceID.getValue()) : adapters.end();
    if (adapter != adapters.end()) {
      controllers.places.emplace(adapter->first, controllers.instances.size());
      controllers.instances.push_back(controller);
      controllers.adapters.push_back(adapter->second);
    }
  }
  return controllers;
}

std::vector<FirmwareFilePtr> findFiles(core::InstanceList::Iterator& identities) {
  std::vector<FirmwareFilePtr> files;
  for (core::CimInstance* identity : identities) {
    const auto* software = dynamic_cast<AdapterSoftware*>(identity);
    if (FirmwareFilePtr file = software != nullptr ? software->getFile() : nullptr) {
      files.push_back(std::move(file));
    }
  }
  return files;
}

std::vector<std::string_view> toTexts(const std::vector<ma::ImageComparison>& comparisons) {
  std::vector<std::string_view> texts;
  texts.reserve(comparisons.size());
  for (const ma::ImageComparison comparison : comparisons) {
    texts.push_back(kComparisonTexts[static_cast<std::size_t>(comparison)]);
  }
  return texts;
}

}  // namespace

Orvex_ElementSoftwareIdentity::Orvex_ElementSoftwareIdentity(core::CimInstance* software,
                                                             Orvex_PortController* controller,
                                                             const std::string& comparison) {
  Antecedent.setTarget(software);
  Dependent.setTarget(controller);
  core::markKeys(*this);
  Comparison.setValue(comparison);
  const auto status = std::ranges::find(kStatuses, comparison, &Status::comparison);
  if (status != std::end(kStatuses)) {
    ElementSoftwareStatus.setValue({status->number});
  }
  if (controller != nullptr && !controller->IsUpdatable.isNull()) {
    UpgradeCondition.setValue(controller->IsUpdatable.getValue() == 1 ? cim::kOwnerUpgradeable
                                                                      : cim::kNotUpgradeable);
  }
}

Orvex_ElementSoftwareIdentityClass::Orvex_ElementSoftwareIdentityClass(
    FirmwareComparisons& comparisons)
    : InstanceProvider(Orvex_ElementSoftwareIdentity::kClassName,
                       {kLog, "Orvex_ElementSoftwareIdentityClass::getInstances", "getInstances",
                        "ElementSoftwareIdentity::getInstances"}),
      m_comparisons(comparisons) {}

void Orvex_ElementSoftwareIdentityClass::refresh() {
  instances().clear();
  // Once for each class: asking again would end the instances that the associations refer to.
  core::InstanceList::Iterator identities =
      core::GetCimBroker().getInstances(Orvex_SoftwareIdentity::kClassName);
  const Controllers controllers = findControllers();
  const std::vector<FirmwareFilePtr> files = findFiles(identities);
  if (!core::LookAhead::isInForce()) {
    m_comparisons.look(files);
  }
  const std::vector<AdapterState> states =
      files.empty() ? std::vector<AdapterState>() : inventory::digestAdapters(controllers.adapters);
  for (core::CimInstance* identity : identities) {
    const auto* software = dynamic_cast<AdapterSoftware*>(identity);
    if (software == nullptr) {
      continue;
    }
    const auto relate = [&](std::size_t place, std::string_view comparison) {
      instances().add(new Orvex_ElementSoftwareIdentity(identity, controllers.instances[place],
                                                        std::string(comparison)));
    };
    if (const FirmwareFilePtr file = software->getFile()) {
      const std::vector<std::string_view> comparisons = toTexts(m_comparisons.find(*file, states));
      for (std::size_t place = 0; place < comparisons.size(); ++place) {
        if (!comparisons[place].empty()) {
          relate(place, comparisons[place]);
        }
      }
    } else if (const auto place = controllers.places.find(software->getAdapter());
               place != controllers.places.end()) {
      relate(place->second, software->getRelation());
    }
  }
  report(m_comparisons.countUncompared());
}

void Orvex_ElementSoftwareIdentityClass::report(std::size_t uncompared) {
  if (uncompared > 0 && !m_isReported) {
    constexpr auto kSeconds =
        std::chrono::duration_cast<std::chrono::seconds>(FirmwareComparisons::kPatience);
    utils::logError(kLog, "Orvex_ElementSoftwareIdentityClass::getInstances",
                    "%d firmware files were not compared with the adapters, since that took longer "
                    "than %d s; keep fewer or smaller ones in the directories of FWFilePath",
                    static_cast<int>(uncompared), static_cast<int>(kSeconds.count()));
  }
  m_isReported = uncompared > 0;
}
