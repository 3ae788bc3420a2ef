#include "midapi/Windows/Users.h"

#include <cstddef>
#include <memory>
#include <system_error>
#include <vector>
#include <windows.h>

// Needs the header above.
#include <sddl.h>

#include "midapi/Windows/LocalMemory.h"
#include "platform/Windows/Handle.h"

namespace ma {
namespace {

[[noreturn]] void fail(const char* operation) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), operation);
}

}  // namespace

std::wstring identifierOf(void* sid) {
  wchar_t* text = nullptr;
  if (ConvertSidToStringSidW(sid, &text) == FALSE) {
    fail("ConvertSidToStringSid");
  }
  const std::unique_ptr<wchar_t, LocalMemory> owner(text);
  return text;
}

std::wstring identifierOfProcess() {
  HANDLE token = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) {
    fail("OpenProcessToken");
  }
  const platform::Handle owner(token);
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
  if (GetTokenInformation(token, TokenUser, memory.data(), size, &size) == FALSE) {
    fail("GetTokenInformation");
  }
  return identifierOf(reinterpret_cast<TOKEN_USER*>(memory.data())->User.Sid);
}

std::wstring nameOf(const std::wstring& identifier) {
  void* sid = nullptr;
  if (ConvertStringSidToSidW(identifier.c_str(), &sid) == FALSE) {
    return identifier;
  }
  const std::unique_ptr<void, LocalMemory> owner(sid);
  DWORD nameSize = 0;
  DWORD domainSize = 0;
  SID_NAME_USE kind{};
  LookupAccountSidW(nullptr, sid, nullptr, &nameSize, nullptr, &domainSize, &kind);
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
