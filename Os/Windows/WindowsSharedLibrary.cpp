#include <filesystem>
#include <windows.h>

#include "Os/SharedLibrary.h"
#include "Os/Windows/SystemText.h"
#include "Utils/Exception.h"
#include "platform/Paths.h"
#include "platform/Texts.h"
#include "platform/Windows/NoErrorDialogs.h"

namespace os {

const char* sharedLibrarySuffix() {
  return ".dll";
}

const char* modulesFromPrograms() {
  return ".";
}

// What the library needs is looked for in its own directory, the program's and the system's:
// neither in the current directory nor in those of PATH, where anybody may have put one.
void loadSharedLibrary(const std::filesystem::path& path) {
  const std::string shown = platform::toShownText(path);
  if (!platform::isAbsolute(path)) {
    throw utils::Exception("Could not load the library '%s': its path is not absolute",
                           shown.c_str());
  }
  const platform::NoErrorDialogs noDialogs;
  // Slashes are not defined here.
  const std::filesystem::path native = std::filesystem::path(path).make_preferred();
  if (LoadLibraryExW(native.c_str(), nullptr,
                     LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS) ==
      nullptr) {
    const auto error = static_cast<std::uint32_t>(GetLastError());
    throw utils::Exception("Could not load the library '%s': %s", shown.c_str(),
                           describeSystemError(error, shown).c_str());
  }
}

}  // namespace os
