// The four numbers by which firmware is for a PCI function.

#ifndef ORVEX_MIDAPI_PCIIDS_H_
#define ORVEX_MIDAPI_PCIIDS_H_

#include <cstdint>
#include <string>

namespace ma {

struct PciIds {
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::uint16_t subsystemVendor = 0;
  std::uint16_t subsystemDevice = 0;

  friend bool operator==(const PciIds&, const PciIds&) = default;
};

// Returns for whom something is, for example "8086:1592", "8086:1592 sub 8086:0002", "8086:any",
// "any". An id that is 0 means any, and a subsystem of any is left out.
[[nodiscard]] std::string describeIds(const PciIds& ids);

// Returns the ids of one device, "8086:1592 sub 8086:0002"; 0 is an id like any other.
[[nodiscard]] std::string describeDevice(const PciIds& ids);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PCIIDS_H_
