// The checks of a firmware file against an adapter that the kernel drives, in the order of
// MidApi.h, and what is to be written.
//
// Pure functions on bytes and on what is known of the adapter; they throw nothing but
// std::bad_alloc, and are linear in the file. Of a package and of a container the kernel is given
// the very file; of an option ROM what ImagePreparation makes of it. What a package's record does
// not name is not written, so the types in it need not be those that the adapter holds.

#ifndef ORVEX_MIDAPI_KERNEL_FIRMWARECHECK_H_
#define ORVEX_MIDAPI_KERNEL_FIRMWARECHECK_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/AdapterListing.h"
#include "midapi/FlashBackend.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/DriverTable.h"
#include "midapi/OptionRom.h"
#include "midapi/PciIds.h"

namespace ma {

// What is known of an adapter. The owner of what it points to outlives it.
struct FirmwareTarget {
  PciIds ids;
  const KernelDriver* driver = nullptr;
  std::string_view driverName;  // which the table need not know
  // The driver's own check of files counts that do not say which devices they are for.
  bool isTrusted = false;
  std::string_view whyNotUpdatable;  // empty where it can be updated
  RomBytes rom;                      // what the adapter's option ROM holds
  bool isRomKnown = true;
  std::span<const FirmwareVersions> versions;
};

// Checks a file and prepares what is to be written; each refusal has a reason.
[[nodiscard]] Preparation prepareFirmware(const FirmwareTarget& target, ConstBytes file,
                                          std::span<std::uint8_t> buffer,
                                          const std::vector<utils::FirmwareType>& types);

// Compares a file with what the adapter holds; Unknown where the file's versions or the adapter's
// are.
[[nodiscard]] ImageComparison compareFirmware(const FirmwareTarget& target, ConstBytes file);

// What comes of a file that is written.
struct FlashPlan {
  std::uint64_t bytes = 0;             // that go to the flash
  std::vector<NamedVersion> versions;  // under the names by which devlink tells them
};

// Returns the plan of a file that prepareFirmware has prepared.
[[nodiscard]] FlashPlan planFlash(const FirmwareTarget& target, ConstBytes file);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FIRMWARECHECK_H_
