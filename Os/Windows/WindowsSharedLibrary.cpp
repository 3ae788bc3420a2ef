#include <windows.h>

#include "Os/SharedLibrary.h"
#include "Os/Windows/SystemText.h"
#include "Utils/Exception.h"

namespace os {

const char* sharedLibrarySuffix() {
  return ".dll";
}

const char* modulesFromPrograms() {
  return ".";
}

// The library's own directory is searched for what it needs, then the program's.
void loadSharedLibrary(const std::string& path) {
  if (LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH) == nullptr) {
    const auto error = static_cast<std::uint32_t>(GetLastError());
    throw utils::Exception("Could not load the library '%s': %s", path.c_str(),
                           describeSystemError(error).c_str());
  }
}

}  // namespace os
