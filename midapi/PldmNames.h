// What the numbers in a firmware package mean (DSP0267), in words for people.
//
// Pure functions; they throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_PLDMNAMES_H_
#define ORVEX_MIDAPI_PLDMNAMES_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "midapi/PldmPackage.h"

namespace ma {

// Under which name the drivers of Linux that take packages tell the version of a component.
struct PldmComponentName {
  std::uint16_t identifier = 0;
  std::string_view name;  // "fw.undi"
};
inline constexpr std::array kPldmComponentNames = {
    PldmComponentName{5, "fw.undi"},
    PldmComponentName{6, "fw.mgmt"},
    PldmComponentName{8, "fw.netlist"},
};

// Returns for example "fw.undi (component 5)"; "component 1" for an identifier without a name.
[[nodiscard]] std::string describeComponent(std::uint16_t identifier);

// Returns for example "firmware"; "classification 0x1234" for an unknown one.
[[nodiscard]] std::string describeClassification(std::uint16_t classification);

// Returns what makes a component take effect, for example "system reboot, AC power cycle"; empty
// where the package does not say. Bits without a name come last, as in "bit 9".
[[nodiscard]] std::string describeActivation(std::uint16_t activation);

// Returns for example "PCI vendor 8086", "UUID 00112233-4455-6677-8899-aabbccddeeff", "Slot: 0102"
// for a vendor-defined one with that title, "type 0x107: 41424300" for others. PCI ids that are 0
// are "any".
[[nodiscard]] std::string describeDescriptor(const PldmDescriptor& descriptor);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PLDMNAMES_H_
