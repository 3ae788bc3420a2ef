// Whether the firmware that a flash holds works already, and what it takes where it does not.
//
// Pure; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_STOREDFIRMWARE_H_
#define ORVEX_MIDAPI_KERNEL_STOREDFIRMWARE_H_

#include <span>
#include <string>

#include "midapi/AdapterListing.h"
#include "midapi/Kernel/FlashRoute.h"

namespace ma {

enum class StoredFirmware {
  InForce,
  Waiting,
  // The driver does not tell what is stored of each part of the firmware that works.
  Unknown,
};

// Judges a flash that was written whole.
[[nodiscard]] StoredFirmware judgeStored(std::span<const FirmwareVersions> versions);

// Returns why devlink does not put it into force, and what does. The route has a way.
[[nodiscard]] std::string whatItTakes(const FlashRoute& route, StoredFirmware stored);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_STOREDFIRMWARE_H_
