// The Ethernet functions of the PCI adapters in this machine, as sysfs shows them.
//
// Reads files of sysfs, which the kernel answers from memory and for everybody: no device is asked,
// no right is needed, and a flash that is being written holds nothing up. Keeps nothing between two
// looks; what is unplugged during a look is left out of it. Any thread may call.

#ifndef ORVEX_MIDAPI_KERNEL_PCIFUNCTIONS_H_
#define ORVEX_MIDAPI_KERNEL_PCIFUNCTIONS_H_

#include <filesystem>
#include <string>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/PciIds.h"

namespace ma {

// A network interface of a function.
struct NetworkInterface {
  std::string name;  // "eth0"
  std::string mac;   // "02:54:4e:00:00:30"; empty where the kernel tells none

  friend bool operator==(const NetworkInterface&, const NetworkInterface&) = default;
};

struct PciFunction {
  PortId id;
  PciIds ids;
  std::string driver;  // "igb"; empty where none is bound
  // In the order of their names; some drivers make none, some make one for each of two ports.
  std::vector<NetworkInterface> interfaces;
  // With the files `rom` and `vpd` where the function has such.
  std::filesystem::path folder;
  bool hasRom = false;
  bool hasVpd = false;
  // Of the first interface, and where that is. What only the driver knows, its speed, is not in it.
  PortLink link{};
  std::filesystem::path interfaceFolder{};
};

// Returns the functions of PCI class 02 (network controllers), ordered by address. Left out are
// virtual functions of SR-IOV, whose firmware is that of their physical one, and addresses that
// need more than the sixteen bits of a PCI segment. None where `sysfs`, for which others than /sys
// may stand, has no folder of PCI devices.
[[nodiscard]] std::vector<PciFunction> findPciFunctions(const std::filesystem::path& sysfs);

// Returns those of the adapter; looks at no other adapter.
[[nodiscard]] std::vector<PciFunction> findPciFunctions(const std::filesystem::path& sysfs,
                                                        const AdapterAddress& adapter);

// Returns whether one of those functions is of the adapter; looks at no other adapter.
[[nodiscard]] bool hasPciFunctions(const std::filesystem::path& sysfs,
                                   const AdapterAddress& adapter);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_PCIFUNCTIONS_H_
