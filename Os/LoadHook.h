// What a module's load hook does on every platform.

#ifndef ORVEX_OS_LOADHOOK_H_
#define ORVEX_OS_LOADHOOK_H_

#include "Utils/Export.h"
#include "Utils/Log.h"

namespace os {

// What is logged of a module that has to do without its agent.
inline constexpr const char* kNotRegistered = "The module could not register its agent";

// Runs a step of the hook. What that throws must not reach the loader: it is logged at error level
// under `log`, as the reason for `failure`.
ORVEX_CORE_API void runLoadHook(utils::LogSource log, const char* failure, void (*step)()) noexcept;

}  // namespace os

#endif  // ORVEX_OS_LOADHOOK_H_
