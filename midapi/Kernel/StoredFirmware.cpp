#include "midapi/Kernel/StoredFirmware.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace ma {
namespace {

// What drivers tell beside the parts of a firmware, under a name like one: never stored by itself.
constexpr std::string_view kNoParts[] = {"fw.api", "fw.psid", "fw.bundle_id"};

// Returns whether that is a part which a flash may change: "fw" or "fw.mgmt", and not
// "fw.mgmt.api".
bool isPart(std::string_view name) {
  constexpr std::string_view kPrefix = "fw.";
  if (name == "fw") {
    return true;
  }
  return name.starts_with(kPrefix) && name.find('.', kPrefix.size()) == std::string_view::npos &&
         std::ranges::find(kNoParts, name) == std::end(kNoParts);
}

}  // namespace

StoredFirmware judgeStored(std::span<const FirmwareVersions> versions) {
  const auto waits = [](const FirmwareVersions& version) {
    return version.tellsStored() && version.stored != version.running;
  };
  if (std::ranges::any_of(versions, waits)) {
    return StoredFirmware::Waiting;
  }
  const auto isUntold = [](const FirmwareVersions& version) {
    return !version.tellsStored() && isPart(version.name);
  };
  return std::ranges::none_of(versions, &FirmwareVersions::tellsStored) ||
                 std::ranges::any_of(versions, isUntold)
             ? StoredFirmware::Unknown
             : StoredFirmware::InForce;
}

std::string whatItTakes(const FlashRoute& route, StoredFirmware stored) {
  const std::string driver = "its driver " + route.function->pci.driver;
  const std::string activation(route.driver->activation);
  if (route.driver->canActivate && route.way != FlashWay::Devlink) {
    return driver +
           " puts stored firmware into force by devlink, by which it does not answer, as in a "
           "network namespace of its own; else " +
           activation;
  }
  return stored == StoredFirmware::Unknown
             ? driver +
                   " cannot put stored firmware into force, and does not tell all that is stored; "
                   "after an update, " +
                   activation
             : driver + " cannot put stored firmware into force; " + activation;
}

}  // namespace ma
