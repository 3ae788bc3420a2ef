#include "midapi/Windows/ProgramData.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <vector>
#include <windows.h>

#include "midapi/FileSystem.h"
#include "midapi/Windows/Users.h"
#include "platform/FileLook.h"
#include "platform/Paths.h"
#include "platform/Texts.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/LastError.h"
#include "platform/Windows/NoErrorDialogs.h"
#include "platform/Windows/SystemPath.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

constexpr std::wstring_view kSystem = L"S-1-5-18";
constexpr std::wstring_view kAdministrators = L"S-1-5-32-544";

// The path without a separator at its end, and without what a person may have shortened.
std::wstring wholeBase() {
  std::error_code error;
  std::wstring base = platform::makeAbsolute(programData(), error).native();
  if (error) {
    base = programData().native();
  }
  while (base.ends_with(L'\\')) {
    base.pop_back();
  }
  return base;
}

bool isBelow(const std::wstring& text, const std::wstring& base) {
  return text.size() > base.size() && text[base.size()] == L'\\' &&
         CompareStringOrdinal(text.data(), static_cast<int>(base.size()), base.data(),
                              static_cast<int>(base.size()), TRUE) == CSTR_EQUAL;
}

// Returns the path of what a path leads to, as the system keeps it; empty where nothing is there.
std::wstring finalPath(const fs::path& path) {
  const platform::NoErrorDialogs noDialogs;
  const HANDLE opened = CreateFileW(platform::toSystemPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return {};
  }
  const platform::Handle folder(opened);
  std::wstring found;
  // Somebody may rename it between the calls.
  for (DWORD size = MAX_PATH; size > found.size();) {
    found.resize(size);
    size = GetFinalPathNameByHandleW(opened, found.data(), static_cast<DWORD>(found.size()), 0);
    if (size < found.size()) {
      found.resize(size);
      std::error_code error;
      return platform::makeAbsolute(found, error).native();
    }
  }
  return {};
}

// Returns how much of an absolute path is its drive, or its server and share.
std::size_t lengthOfRoot(const std::wstring& text) {
  constexpr std::size_t kDrive = 2;
  if (!text.starts_with(L"\\\\")) {
    return kDrive;
  }
  const std::size_t share = std::min(text.find(L'\\', kDrive), text.size());
  return std::min(text.find(L'\\', share + 1), text.size());
}

// Returns an absolute path as it reads below wholeBase(), through whatever it leads there: short
// names, a link, a drive that stands for a folder, a share of this machine. Returns an empty text
// where it leads elsewhere. Links that stand in %ProgramData% itself stay in it.
std::wstring placeInProgramData(const std::wstring& text) {
  const std::wstring base = wholeBase();
  if (isBelow(text, base)) {
    return text;
  }
  const std::wstring finalBase = finalPath(base);
  if (finalBase.empty()) {
    return {};
  }
  const std::size_t root = lengthOfRoot(text);
  for (std::size_t end = root;; end = std::min(text.find(L'\\', end + 1), text.size())) {
    const std::wstring folder = text.substr(0, end) + (end == root ? L"\\" : L"");
    if (platform::areOneFile(folder, base)) {
      return base + text.substr(end);
    }
    if (const std::wstring found = finalPath(folder); isBelow(found, finalBase)) {
      return base + found.substr(finalBase.size()) + text.substr(end);
    }
    if (end >= text.size()) {
      return {};
    }
  }
}

// A folder itself: of a link, not what it leads to.
class Folder {
 public:
  explicit Folder(const fs::path& path)
      : m_attributes(GetFileAttributesW(platform::toSystemPath(path).c_str())) {
    const HANDLE opened =
        CreateFileW(platform::toSystemPath(path).c_str(), READ_CONTROL | FILE_READ_ATTRIBUTES,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (opened != INVALID_HANDLE_VALUE) {
      m_handle = platform::Handle(opened);
    } else if (const DWORD error = GetLastError();
               error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
      throw std::system_error(static_cast<int>(error), std::system_category(), "CreateFile");
    }
  }

  [[nodiscard]] bool isThere() const { return m_handle.isOpen(); }

  // An emulation opens what a link leads to all the same: its path tells that it is one.
  [[nodiscard]] bool isLink() const {
    BY_HANDLE_FILE_INFORMATION found{};
    if (GetFileInformationByHandle(m_handle.get(), &found) == FALSE) {
      platform::throwLastError("GetFileInformationByHandle");
    }
    return ((found.dwFileAttributes | m_attributes) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  }

  // Returns the identifier of who owns it.
  [[nodiscard]] std::wstring owner() const {
    DWORD size = 0;
    // Fails, for there is no room, and tells how much it needs.
    static_cast<void>(
        GetKernelObjectSecurity(m_handle.get(), OWNER_SECURITY_INFORMATION, nullptr, 0, &size));
    std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
    PSECURITY_DESCRIPTOR const descriptor = memory.data();
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    if (GetKernelObjectSecurity(m_handle.get(), OWNER_SECURITY_INFORMATION, descriptor, size,
                                &size) == FALSE ||
        GetSecurityDescriptorOwner(descriptor, &sid, &isDefault) == FALSE) {
      platform::throwLastError("GetKernelObjectSecurity");
    }
    return identifierOf(sid);
  }

 private:
  DWORD m_attributes;
  platform::Handle m_handle;
};

std::string quoted(const fs::path& path) {
  return "\"" + platform::toShownText(path) + "\"";
}

std::string objectionToOne(const fs::path& path) {
  const Folder folder(path);
  if (!folder.isThere()) {
    return "";
  }
  const std::string shown = platform::toShownText(path);
  if (folder.isLink()) {
    return shown +
           " is a link to another place, and who made it could change where it leads; as "
           "an administrator, remove it (rmdir " +
           quoted(path) + "), or name the place itself by ORVEX_ADAPTERS";
  }
  const std::wstring owner = folder.owner();
  if (owner == kSystem || owner == kAdministrators || owner == identifierOfProcess()) {
    return "";
  }
  return shown + " belongs to " + platform::toShownText(nameOf(owner)) +
         ", who can change whatever is put there; as an administrator, remove it (rmdir /s /q " +
         quoted(path) + "), or take it over (takeown /f " + quoted(path) +
         " /a /r) and look who else may write there (icacls " + quoted(path) +
         "), or name another folder by ORVEX_ADAPTERS";
}

}  // namespace

fs::path programData() {
  const fs::path base = environmentPath("ProgramData");
  return base.empty() ? fs::path("C:\\ProgramData") : base;
}

bool isInProgramData(const fs::path& path) {
  return isBelow(placeInProgramData(path.native()), wholeBase());
}

// From the outside: what is in somebody else's folder says nothing.
std::string objectionTo(const fs::path& path) {
  const std::wstring place = placeInProgramData(path.native());
  const std::size_t base = wholeBase().size();
  for (std::size_t end = base; end < place.size();) {
    end = std::min(place.find(L'\\', end + 1), place.size());
    if (std::string objection = objectionToOne(place.substr(0, end)); !objection.empty()) {
      return objection;
    }
  }
  return "";
}

}  // namespace ma
