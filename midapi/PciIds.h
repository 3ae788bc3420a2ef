// The four numbers by which firmware is for a PCI function.

#ifndef ORVEX_MIDAPI_PCIIDS_H_
#define ORVEX_MIDAPI_PCIIDS_H_

#include <cstdint>

namespace ma {

struct PciIds {
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::uint16_t subsystemVendor = 0;
  std::uint16_t subsystemDevice = 0;

  friend bool operator==(const PciIds&, const PciIds&) = default;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_PCIIDS_H_
