#include "midapi/Windows/FolderEntries.h"

#include <string_view>
#include <vector>
#include <windows.h>

#include "platform/Windows/SystemPath.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

class Search {
 public:
  explicit Search(const fs::path& folder)
      : m_handle(FindFirstFileW((platform::toSystemPath(folder / "*")).c_str(), &m_found)) {}
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;
  ~Search() {
    if (isOpen()) {
      static_cast<void>(FindClose(m_handle));  // what was found is true all the same
    }
  }

  [[nodiscard]] bool isOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
  [[nodiscard]] const WIN32_FIND_DATAW& found() const { return m_found; }
  [[nodiscard]] bool goOn() { return FindNextFileW(m_handle, &m_found) != FALSE; }

 private:
  WIN32_FIND_DATAW m_found{};
  HANDLE m_handle;
};

bool isOfTheFolderItself(std::wstring_view name) {
  return name == L"." || name == L"..";
}

FolderEntry toEntry(const WIN32_FIND_DATAW& found) {
  return {found.cFileName, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
          (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0};
}

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

std::uint32_t forEachEntry(const fs::path& folder,
                           const std::function<bool(const FolderEntry&)>& take) {
  Search search(folder);
  if (!search.isOpen()) {
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(platform::toSystemPath(folder).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
      return error;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      return ERROR_DIRECTORY;
    }
    // The root of a drive that is empty has not even an entry of its own.
    return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
  }
  do {
    if (!isOfTheFolderItself(search.found().cFileName) && !take(toEntry(search.found()))) {
      return ERROR_SUCCESS;
    }
  } while (search.goOn());
  const DWORD error = GetLastError();
  return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

void removeTree(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(platform::toSystemPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return;
  }
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (isFolder && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    std::vector<fs::path> names;
    static_cast<void>(forEachEntry(path, [&names](const FolderEntry& entry) {
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
