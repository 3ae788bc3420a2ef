// What the kernel's drivers of Ethernet adapters do with firmware, as their sources say
// (Linux 6.1).
//
// Which files a driver takes stands beside the formats, in midapi/FirmwareFormat.h. A driver that
// is not in the table is known by what it does: one that has devlink is given what says for which
// devices it is, and its verdict counts; one that has not cannot write firmware, whatever the
// kernel answers. Constants and pure functions; nothing throws. Any thread.

#ifndef ORVEX_MIDAPI_KERNEL_DRIVERTABLE_H_
#define ORVEX_MIDAPI_KERNEL_DRIVERTABLE_H_

#include <cstdint>
#include <span>
#include <string_view>

#include "midapi/FirmwareFormat.h"
#include "midapi/PldmNames.h"

namespace ma {

struct KernelDriver {
  std::string_view name;  // of the PCI driver; empty for those that are not in the table
  // By what it writes firmware. What has neither has a way of its own that is not for firmware.
  bool hasDevlink = false;
  bool hasEthtool = false;  // a function of its own for ETHTOOL_FLASHDEV
  // That function runs under the kernel's lock of the network configuration: whoever wants to
  // change that waits until the flash is written.
  bool holdsConfiguration = false;
  // Devlink can have it put stored firmware into force.
  bool canActivate = false;
  // What does so otherwise: "reboot the machine".
  std::string_view activation;
  std::span<const PldmComponentName> components;

  [[nodiscard]] bool canWrite() const { return hasDevlink || hasEthtool; }
};

// Returns the table, ordered by name.
[[nodiscard]] std::span<const KernelDriver> knownDrivers() noexcept;

// Returns what is known of the driver of that name. `hasDevlink` says whether it has answered
// there.
[[nodiscard]] const KernelDriver& driverOf(std::string_view name, bool hasDevlink) noexcept;

// Returns whether the driver takes files of the format.
[[nodiscard]] bool takes(const KernelDriver& driver, FirmwareFormat format) noexcept;

// Returns the name of a component; empty where it has none.
[[nodiscard]] std::string_view componentName(const KernelDriver& driver,
                                             std::uint16_t identifier) noexcept;

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_DRIVERTABLE_H_
