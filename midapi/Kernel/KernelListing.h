// What is told of an adapter that the kernel drives, from what is known of its functions.
//
// Throws nothing but std::bad_alloc; any thread. What points into an adapter lives as long as that.

#ifndef ORVEX_MIDAPI_KERNEL_KERNELLISTING_H_
#define ORVEX_MIDAPI_KERNEL_KERNELLISTING_H_

#include <cstdint>
#include <string>
#include <vector>

#include "midapi/AdapterListing.h"
#include "midapi/Kernel/KernelAdapters.h"
#include "midapi/Kernel/PciNames.h"
#include "midapi/OptionRom.h"

namespace ma {

// Return what the function has, or else the first function that has such: often one of an adapter's
// functions answers for all. The adapter need not have the function.
[[nodiscard]] std::vector<FirmwareVersions> versionsOf(const KernelAdapter& adapter,
                                                       std::uint8_t function);
[[nodiscard]] RomBytes romOf(const KernelAdapter& adapter, std::uint8_t function);

// Returns whether the option ROM is known: it could be read, or the adapter has none.
[[nodiscard]] bool isRomKnown(const KernelAdapter& adapter);

// Returns of the adapter what describeKernelAdapter does, but for its flash and notes.
[[nodiscard]] AdapterListing outlineKernelAdapter(const KernelAdapter& adapter, PciNames& names);

// Returns the adapter but for whether it can be updated. One that does not say what its maker calls
// it has the name of its ids.
[[nodiscard]] AdapterListing describeKernelAdapter(const KernelAdapter& adapter, PciNames& names);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_KERNELLISTING_H_
