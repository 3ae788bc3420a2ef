// Objects that are there until the process ends, whatever threads still run then.
//
// They are never destroyed, for nobody knows who asks for them last. Windows can take this library
// out of a process that goes on: what they have of the system goes with it. Defined per platform:
// POSIX keeps the library.

#ifndef ORVEX_UTILS_LASTING_H_
#define ORVEX_UTILS_LASTING_H_

#include "Utils/Export.h"

namespace utils {

// Has `destroy` called when this library is unloaded, the last one first, and not at the end of the
// process. For an object of this library, when it is made; a handful of them. Any thread may call.
ORVEX_CORE_API void destroyAtUnload(void (*destroy)()) noexcept;

}  // namespace utils

#endif  // ORVEX_UTILS_LASTING_H_
