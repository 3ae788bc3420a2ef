#include "platform/Directory.h"

namespace platform {

namespace fs = std::filesystem;

std::error_code forEachEntry(const fs::path& directory,
                             const std::function<bool(const DirectoryEntry&)>& take) {
  std::error_code error;
  std::error_code ignored;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!take(
            {entry->path().filename(), entry->is_directory(ignored), entry->is_symlink(ignored)})) {
      return {};
    }
  }
  return error;
}

}  // namespace platform
