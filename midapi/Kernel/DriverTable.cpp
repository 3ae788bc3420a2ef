#include "midapi/Kernel/DriverTable.h"

#include <algorithm>
#include <array>

namespace ma {
namespace {

constexpr std::string_view kReboot =
    "reboot the machine, or power cycle it where that is not enough";
constexpr std::string_view kReloadDriver = "reload the driver, or reboot the machine";

constexpr KernelDriver byDevlink(std::string_view name, bool canActivate) {
  return {name, true, false, false, canActivate, kReboot, {}};
}
constexpr KernelDriver byEthtool(std::string_view name, std::string_view activation) {
  return {name, false, true, true, false, activation, {}};
}
constexpr KernelDriver byBoth(std::string_view name, bool holdsConfiguration) {
  return {name, true, true, holdsConfiguration, true, kReboot, {}};
}

constexpr std::array kDrivers = {
    byEthtool("be2net", kReboot),
    byEthtool("bna", kReboot),
    byBoth("bnxt_en", true),
    byEthtool("cxgb4", kReloadDriver),
    byDevlink("hinic", false),
    // What it takes by ethtool is a profile for its packet parser, which is gone at the next start.
    KernelDriver{"i40e", false, false, false, false, {}, {}},
    KernelDriver{"ice", true, false, false, true, kReboot, kPldmComponentNames},
    byDevlink("ionic", false),
    byBoth("mlx5_core", false),
    byDevlink("mlxsw_spectrum", true),
    byDevlink("mlxsw_spectrum2", true),
    byDevlink("mlxsw_spectrum3", true),
    byDevlink("mlxsw_spectrum4", true),
    byDevlink("nfp", false),
    byEthtool("qede", kReboot),
};

constexpr KernelDriver kOtherWithDevlink{
    {}, true, false, false, true, kReboot, kPldmComponentNames};
constexpr KernelDriver kOther{};

}  // namespace

std::span<const KernelDriver> knownDrivers() noexcept {
  return kDrivers;
}

const KernelDriver& driverOf(std::string_view name, bool hasDevlink) noexcept {
  const auto* const found = std::ranges::find(kDrivers, name, &KernelDriver::name);
  if (found != kDrivers.end()) {
    return *found;
  }
  return hasDevlink ? kOtherWithDevlink : kOther;
}

bool takes(const KernelDriver& driver, FirmwareFormat format) noexcept {
  if (driver.name.empty()) {
    return driver.canWrite() && tellsDevices(format);
  }
  const auto drivers = driversOf(format);
  return std::ranges::find(drivers, driver.name) != drivers.end();
}

std::string_view componentName(const KernelDriver& driver, std::uint16_t identifier) noexcept {
  const auto found =
      std::ranges::find(driver.components, identifier, &PldmComponentName::identifier);
  return found != driver.components.end() ? found->name : std::string_view();
}

}  // namespace ma
