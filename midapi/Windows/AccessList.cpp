#include "midapi/Windows/AccessList.h"

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>
#include <windows.h>

// Needs the header above.
#include <sddl.h>

#include "midapi/Windows/Users.h"
#include "platform/Windows/LastError.h"
#include "platform/Windows/LocalMemory.h"
#include "platform/Windows/SystemPath.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

// Not inherited from above (P), but inherited by files and folders below (OICI): all for the system
// and the administrators, reading for users.
constexpr const wchar_t* kList = L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)";

bool isMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

bool isWithoutLists(DWORD error) {
  return error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION ||
         error == ERROR_CALL_NOT_IMPLEMENTED;
}

// Returns what the parts of a list say that are to be written back: whether it takes over what is
// said above it.
SECURITY_INFORMATION inheritanceOf(SECURITY_DESCRIPTOR_CONTROL control) {
  return (control & SE_DACL_PROTECTED) != 0 ? PROTECTED_DACL_SECURITY_INFORMATION
                                            : UNPROTECTED_DACL_SECURITY_INFORMATION;
}

}  // namespace

struct PrivateFolderAttributes::State {
  std::unique_ptr<void, platform::LocalMemory> descriptor;
  SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

PrivateFolderAttributes::PrivateFolderAttributes() : m_state(std::make_unique<State>()) {
  const std::wstring list = std::wstring(kList) + L"(A;OICI;FA;;;" + identifierOfProcess() + L")";
  void* descriptor = nullptr;
  if (ConvertStringSecurityDescriptorToSecurityDescriptorW(list.c_str(), SDDL_REVISION_1,
                                                           &descriptor, nullptr) == FALSE) {
    platform::throwLastError("ConvertStringSecurityDescriptorToSecurityDescriptor");
  }
  m_state->descriptor.reset(descriptor);
  m_state->attributes.lpSecurityDescriptor = descriptor;
}

PrivateFolderAttributes::~PrivateFolderAttributes() = default;

void* PrivateFolderAttributes::get() const {
  return &m_state->attributes;
}

std::uint32_t copyAccessList(const fs::path& from, const fs::path& to) {
  const fs::path source = platform::toSystemPath(from);
  const fs::path target = platform::toSystemPath(to);
  DWORD size = 0;
  // Fails, for there is no room, and tells how much it needs; any other failure is that of the
  // second call, too.
  static_cast<void>(GetFileSecurityW(source.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size));
  std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
  PSECURITY_DESCRIPTOR const descriptor = memory.data();
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  if (GetFileSecurityW(source.c_str(), DACL_SECURITY_INFORMATION, descriptor, size, &size) ==
          FALSE ||
      GetSecurityDescriptorControl(descriptor, &control, &revision) == FALSE) {
    const DWORD error = GetLastError();
    return isMissing(error) || isWithoutLists(error) ? ERROR_SUCCESS : error;
  }
  // Else the system takes what was inherited for the file's own.
  constexpr SECURITY_DESCRIPTOR_CONTROL kInherit = SE_DACL_AUTO_INHERIT_REQ;
  if (((control & SE_DACL_AUTO_INHERITED) != 0 &&
       SetSecurityDescriptorControl(descriptor, kInherit, kInherit) == FALSE) ||
      SetFileSecurityW(target.c_str(), DACL_SECURITY_INFORMATION | inheritanceOf(control),
                       descriptor) == FALSE) {
    const DWORD error = GetLastError();
    return isWithoutLists(error) ? ERROR_SUCCESS : error;
  }
  return ERROR_SUCCESS;
}

}  // namespace ma
