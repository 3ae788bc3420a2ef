// Which of a package's records are for an adapter, by the rule of the kernel's own reader
// (pldmfw_op_pci_match_record of lib/pldmfw, Linux 6.1).
//
// Pure functions; they throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_PLDMMATCH_H_
#define ORVEX_MIDAPI_PLDMMATCH_H_

#include <cstddef>
#include <vector>

#include "midapi/PciIds.h"
#include "midapi/PldmPackage.h"

namespace ma {

// Returns the four ids that the record names, 0 for each that it does not; of one that is named
// twice the last.
[[nodiscard]] PciIds idsOf(const PldmRecord& record);

// Returns whether each of the four ids that the record names is the function's. An id that is 0 or
// absent means any, and of one that is named twice the last counts; descriptors of other types do
// not matter. So a record that names none of the four is for every adapter: namesDevice tells.
[[nodiscard]] bool isFor(const PldmRecord& record, const PciIds& ids);

// Returns whether the record names a vendor and a device, neither of them any.
[[nodiscard]] bool namesDevice(const PldmRecord& record);

// Returns the indexes of the device records that are for the adapter, in their order. The kernel
// takes the first, and writes the components that it names.
[[nodiscard]] std::vector<std::size_t> findRecordsFor(const PldmPackage& package,
                                                      const PciIds& ids);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PLDMMATCH_H_
