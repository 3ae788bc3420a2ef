#include "midapi/Windows/ProgramData.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <vector>
#include <windows.h>

#include "midapi/FileSystem.h"
#include "midapi/Windows/Users.h"
#include "platform/Paths.h"
#include "platform/Texts.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/LastError.h"
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
  const std::wstring base = wholeBase();
  const std::wstring& text = path.native();
  return text.size() > base.size() && text[base.size()] == L'\\' &&
         CompareStringOrdinal(text.data(), static_cast<int>(base.size()), base.data(),
                              static_cast<int>(base.size()), TRUE) == CSTR_EQUAL;
}

// From the outside: what is in somebody else's folder says nothing.
std::string objectionTo(const fs::path& path) {
  if (!isInProgramData(path)) {
    return "";
  }
  const std::wstring& text = path.native();
  for (std::size_t end = wholeBase().size(); end < text.size();) {
    end = std::min(text.find(L'\\', end + 1), text.size());
    if (std::string objection = objectionToOne(text.substr(0, end)); !objection.empty()) {
      return objection;
    }
  }
  return "";
}

}  // namespace ma
