// By which function of an adapter, and how, firmware gets to it.
//
// Pure; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_FLASHROUTE_H_
#define ORVEX_MIDAPI_KERNEL_FLASHROUTE_H_

#include <cstdint>
#include <string>

#include "midapi/Kernel/DriverTable.h"
#include "midapi/Kernel/KernelAdapters.h"

namespace ma {

enum class FlashWay { None, Devlink, Ethtool };

// Points into the adapter that it was found for.
struct FlashRoute {
  // Whose ids and driver decide what may be written.
  const KernelFunction* function = nullptr;
  const KernelDriver* driver = nullptr;
  FlashWay way = FlashWay::None;
  std::string interface;  // of FlashWay::Ethtool
  std::string whyNone;    // of FlashWay::None, in one line for a person
};

// Returns the way through the function `preferred` where there is one, else through the first
// function that has one; without any, that of the preferred one says why. The adapter has the
// function. Devlink is taken where a driver has both: it tells how far it is, and what went wrong.
[[nodiscard]] FlashRoute findRoute(const KernelAdapter& adapter, std::uint8_t preferred);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FLASHROUTE_H_
