// What has become of a flash, by the versions that the driver tells afterwards.
//
// Pure; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_FLASHOUTCOME_H_
#define ORVEX_MIDAPI_KERNEL_FLASHOUTCOME_H_

#include <span>
#include <string>

#include "midapi/AdapterListing.h"
#include "midapi/Kernel/FlashJournal.h"

namespace ma {

enum class FlashOutcome {
  Unknown,     // the versions cannot tell
  Written,     // the flash holds what the file has
  NotWritten,  // it holds what it held before
  Mixed,       // neither
};

// Judges an entry whose writer is gone.
[[nodiscard]] FlashOutcome judge(const FlashEntry& entry,
                                 std::span<const FirmwareVersions> versions);

// Returns the first difference between what was to be written and what the flash holds, for example
// "fw.undi is 1.0.0, and the file has 1.1.0"; empty where there is none. What the driver does not
// tell of the flash is not compared: what runs is no witness of that.
[[nodiscard]] std::string findDifference(std::span<const NamedVersion> expected,
                                         std::span<const FirmwareVersions> versions);

// Returns the first name under which something is to be compared, and that the driver told of the
// flash before and does not tell now; empty where there is none.
[[nodiscard]] std::string findUntold(std::span<const NamedVersion> expected,
                                     std::span<const NamedVersion> before,
                                     std::span<const FirmwareVersions> versions);

// Returns what a person is told of the flash: "fw.mgmt 7.1.0, fw.undi (none)".
[[nodiscard]] std::string describeStored(std::span<const FirmwareVersions> versions);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FLASHOUTCOME_H_
