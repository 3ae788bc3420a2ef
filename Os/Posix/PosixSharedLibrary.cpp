#include <dlfcn.h>

#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"

namespace os {

const char* sharedLibrarySuffix() {
  return ".so";
}

const char* modulesFromPrograms() {
  return "../lib/quorvel";
}

void loadSharedLibrary(const std::filesystem::path& path) {
  if (!path.is_absolute()) {
    throw utils::Exception("Could not load the library '%s': its path is not absolute",
                           path.c_str());
  }
  if (dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    const char* reason = dlerror();
    throw utils::Exception("Could not load the library '%s': %s", path.c_str(),
                           reason != nullptr ? reason : "unknown reason");
  }
}

}  // namespace os
