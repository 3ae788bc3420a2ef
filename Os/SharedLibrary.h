// A library that is loaded at run time. Defined per platform.

#ifndef ORVEX_OS_SHAREDLIBRARY_H_
#define ORVEX_OS_SHAREDLIBRARY_H_

#include <filesystem>

#include "Utils/Export.h"

namespace os {

// Returns the end of a shared library's file name on this platform, for example ".so".
[[nodiscard]] ORVEX_CORE_API const char* sharedLibrarySuffix();

// Returns the way from a program's directory to that of the modules it loads, for example
// "../lib/quorvel".
[[nodiscard]] ORVEX_CORE_API const char* modulesFromPrograms();

// Loads a library for the life of the process, and with it runs its start-up code: what that code
// registers is used until the end, so there is no unloading. Throws utils::Exception with the
// loader's own words, and for a relative path, which names one library here and another there.
ORVEX_CORE_API void loadSharedLibrary(const std::filesystem::path& path);

}  // namespace os

#endif  // ORVEX_OS_SHAREDLIBRARY_H_
