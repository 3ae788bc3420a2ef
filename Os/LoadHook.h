// What a module's load hook does on every platform.

#ifndef ORVEX_OS_LOADHOOK_H_
#define ORVEX_OS_LOADHOOK_H_

#include "Utils/Export.h"
#include "Utils/Log.h"

namespace os {

// Calls `attach`. What that throws must not reach the loader: it is logged at error level under
// `log`, and the module stays unregistered.
ORVEX_CORE_API void runLoadHook(utils::LogSource log, void (*attach)()) noexcept;

}  // namespace os

#endif  // ORVEX_OS_LOADHOOK_H_
