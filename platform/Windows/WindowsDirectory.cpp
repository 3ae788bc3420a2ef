#include <string_view>
#include <windows.h>

#include "platform/Directory.h"
#include "platform/Windows/NoErrorDialogs.h"
#include "platform/Windows/SystemPath.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class Search {
 public:
  explicit Search(const fs::path& folder)
      : m_handle(FindFirstFileW((toSystemPath(folder / "*")).c_str(), &m_found)) {}
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

DirectoryEntry toEntry(const WIN32_FIND_DATAW& found) {
  return {found.cFileName, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
          (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0};
}

std::error_code toError(DWORD error) {
  return {static_cast<int>(error), std::system_category()};
}

// Returns why nothing was found in a folder.
std::error_code whyNothing(const fs::path& folder, DWORD error) {
  const DWORD attributes = GetFileAttributesW(toSystemPath(folder).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return toError(error);
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    return toError(ERROR_DIRECTORY);
  }
  // The root of a drive that is empty has not even an entry of its own.
  return toError(error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error);
}

}  // namespace

std::error_code forEachEntry(const fs::path& directory,
                             const std::function<bool(const DirectoryEntry&)>& take) {
  const NoErrorDialogs noDialogs;
  Search search(directory);
  if (!search.isOpen()) {
    return whyNothing(directory, GetLastError());
  }
  do {
    if (!isOfTheFolderItself(search.found().cFileName) && !take(toEntry(search.found()))) {
      return {};
    }
  } while (search.goOn());
  const DWORD error = GetLastError();
  return error == ERROR_NO_MORE_FILES ? std::error_code() : toError(error);
}

}  // namespace platform
