#include "midapi/Windows/Users.h"

#include <cstddef>
#include <memory>
#include <vector>
#include <windows.h>

// Needs the header above.
#include <sddl.h>

#include "platform/Windows/Handle.h"
#include "platform/Windows/LastError.h"
#include "platform/Windows/LocalMemory.h"

namespace ma {

std::wstring identifierOf(void* sid) {
  wchar_t* text = nullptr;
  if (ConvertSidToStringSidW(sid, &text) == FALSE) {
    platform::throwLastError("ConvertSidToStringSid");
  }
  const std::unique_ptr<wchar_t, platform::LocalMemory> owner(text);
  return text;
}

std::wstring identifierOfProcess() {
  HANDLE token = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) {
    platform::throwLastError("OpenProcessToken");
  }
  const platform::Handle owner(token);
  DWORD size = 0;
  // Fails, for there is no room, and tells how much it needs.
  static_cast<void>(GetTokenInformation(token, TokenUser, nullptr, 0, &size));
  std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
  if (GetTokenInformation(token, TokenUser, memory.data(), size, &size) == FALSE) {
    platform::throwLastError("GetTokenInformation");
  }
  return identifierOf(reinterpret_cast<TOKEN_USER*>(memory.data())->User.Sid);
}

std::wstring nameOf(const std::wstring& identifier) {
  void* sid = nullptr;
  if (ConvertStringSidToSidW(identifier.c_str(), &sid) == FALSE) {
    return identifier;
  }
  const std::unique_ptr<void, platform::LocalMemory> owner(sid);
  DWORD nameSize = 0;
  DWORD domainSize = 0;
  SID_NAME_USE kind{};
  // Fails, for there is no room, and tells how much they need.
  static_cast<void>(
      LookupAccountSidW(nullptr, sid, nullptr, &nameSize, nullptr, &domainSize, &kind));
  std::wstring name(nameSize, L'\0');
  std::wstring domain(domainSize, L'\0');
  if (LookupAccountSidW(nullptr, sid, name.data(), &nameSize, domain.data(), &domainSize, &kind) ==
      FALSE) {
    return identifier;
  }
  // Now without their ends.
  name.resize(nameSize);
  domain.resize(domainSize);
  return domain.empty() ? name : domain + L"\\" + name;
}

}  // namespace ma
