// The option ROMs among a package's components.
//
// Pure functions on bytes; they throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_PLDMROMS_H_
#define ORVEX_MIDAPI_PLDMROMS_H_

#include <cstddef>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/OptionRom.h"
#include "midapi/PldmPackage.h"

namespace ma {

// A component that begins as an option ROM does: what its bytes hold, or why they are no chain.
struct PldmRom {
  std::size_t component = 0;  // its index in the package
  RomChain chain;
};

// Returns the option ROMs in the order of the components. `bytes` are those that the package was
// read from. A ROM goes into the flash whole: what follows the chain, if it is not padding, is a
// defect as in any ROM file.
[[nodiscard]] std::vector<PldmRom> findOptionRoms(const PldmPackage& package, RomBytes bytes);

// Returns the types and versions of the chain's images that have a type, in the order of the chain.
[[nodiscard]] std::vector<utils::FirmwareVersionInfo> firmwareOf(const RomChain& chain);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PLDMROMS_H_
