// What the numbers in a firmware package mean (DSP0267), in words for people.
//
// Pure functions; they throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_PLDMNAMES_H_
#define ORVEX_MIDAPI_PLDMNAMES_H_

#include <cstdint>
#include <string>

#include "midapi/PldmPackage.h"

namespace ma {

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
