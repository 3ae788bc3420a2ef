#include "midapi/Windows/FolderTree.h"

#include <vector>
#include <windows.h>

#include "platform/Directory.h"
#include "platform/Windows/SystemPath.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

void removeEntry(const fs::path& path, bool isFolder) {
  const fs::path native = platform::toSystemPath(path);
  const auto attempt = [&native, isFolder] {
    return (isFolder ? RemoveDirectoryW(native.c_str()) : DeleteFileW(native.c_str())) != FALSE;
  };
  if (!attempt() && GetLastError() == ERROR_ACCESS_DENIED &&
      SetFileAttributesW(native.c_str(), FILE_ATTRIBUTE_NORMAL) != FALSE) {
    static_cast<void>(attempt());
  }
}

}  // namespace

void removeTree(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(platform::toSystemPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return;
  }
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (isFolder && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    std::vector<fs::path> names;
    static_cast<void>(platform::forEachEntry(path, [&names](const platform::DirectoryEntry& entry) {
      names.push_back(entry.name);
      return true;
    }));
    for (const fs::path& name : names) {
      removeTree(path / name);
    }
  }
  removeEntry(path, isFolder);
}

}  // namespace ma
