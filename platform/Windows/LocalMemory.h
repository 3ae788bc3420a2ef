// The owner of memory that a call of the system has allocated for its caller.

#ifndef ORVEX_PLATFORM_WINDOWS_LOCALMEMORY_H_
#define ORVEX_PLATFORM_WINDOWS_LOCALMEMORY_H_

#include <windows.h>

namespace platform {

// For std::unique_ptr.
struct LocalMemory {
  void operator()(void* memory) const { static_cast<void>(LocalFree(memory)); }  // else it stays
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_LOCALMEMORY_H_
