// The back end of the adapters that the operating system's own drivers drive.

#ifndef ORVEX_MIDAPI_KERNELBACKEND_H_
#define ORVEX_MIDAPI_KERNELBACKEND_H_

#include "Utils/FlashSettings.h"
#include "midapi/FlashBackend.h"

namespace ma {

// Returns it; null where this platform has none. Lives as long as the process. `settings` is asked
// at each operation. Defined per platform.
[[nodiscard]] FlashBackend* kernelBackend(utils::FlashSettings (*settings)());

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNELBACKEND_H_
