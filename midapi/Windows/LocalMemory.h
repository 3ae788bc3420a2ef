// The owner of memory that a call of the system has allocated for its caller.

#ifndef ORVEX_MIDAPI_WINDOWS_LOCALMEMORY_H_
#define ORVEX_MIDAPI_WINDOWS_LOCALMEMORY_H_

#include <windows.h>

namespace ma {

// For std::unique_ptr.
struct LocalMemory {
  void operator()(void* memory) const { LocalFree(memory); }
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_LOCALMEMORY_H_
