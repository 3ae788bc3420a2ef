// A %ProgramData% of a test's own, and owners of the folders in it: an emulation of the system has
// one user.

#ifndef ORVEX_TESTS_MIDAPI_WINDOWS_SERVICEDATA_H_
#define ORVEX_TESTS_MIDAPI_WINDOWS_SERVICEDATA_H_

#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <windows.h>

// Needs the header above.
#include <sddl.h>

#include "midapi/FileSystem.h"
#include "platform/Windows/LocalMemory.h"
#include "tests/support/Windows/ImportPatch.h"

namespace test {

class OwnProgramData {
 public:
  explicit OwnProgramData(const std::wstring& path) {
    SetEnvironmentVariableW(L"ProgramData", path.c_str());
  }
  OwnProgramData(const OwnProgramData&) = delete;
  OwnProgramData& operator=(const OwnProgramData&) = delete;
  ~OwnProgramData() { SetEnvironmentVariableW(L"ProgramData", m_before.c_str()); }

 private:
  const std::wstring m_before = ma::environmentPath("ProgramData").native();
};

// While it lives, folders of that name belong to that user; with no identifier, nobody may ask
// whose they are. One at a time.
class PlayedOwner {
 public:
  PlayedOwner(const std::wstring& folder, const std::wstring& identifier) {
    s_folder = folder;
    s_identifier = identifier;
  }
  PlayedOwner(const PlayedOwner&) = delete;
  PlayedOwner& operator=(const PlayedOwner&) = delete;
  ~PlayedOwner() = default;

 private:
  static BOOL WINAPI tell(HANDLE file, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR descriptor,
                          DWORD size, DWORD* needed) {
    wchar_t path[MAX_PATH] = {};
    GetFinalPathNameByHandleW(file, path, MAX_PATH, 0);
    if (what != OWNER_SECURITY_INFORMATION || std::filesystem::path(path).filename() != s_folder) {
      using Tell = decltype(GetKernelObjectSecurity);
      return reinterpret_cast<Tell*>(reinterpret_cast<void*>(
          GetProcAddress(GetModuleHandleA("advapi32.dll"), "GetKernelObjectSecurity")))(
          file, what, descriptor, size, needed);
    }
    if (s_identifier.empty()) {
      SetLastError(ERROR_ACCESS_DENIED);
      return FALSE;
    }
    void* made = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW((L"O:" + s_identifier).c_str(),
                                                         SDDL_REVISION_1, &made, needed);
    const std::unique_ptr<void, platform::LocalMemory> owner(made);
    if (size < *needed) {
      SetLastError(ERROR_INSUFFICIENT_BUFFER);
      return FALSE;
    }
    std::memcpy(descriptor, made, *needed);
    return TRUE;
  }

  static inline std::wstring s_folder;
  static inline std::wstring s_identifier;

  ImportPatch m_patch{"midapi_test.exe", "GetKernelObjectSecurity", &tell};
};

inline constexpr const wchar_t* kStranger = L"S-1-5-21-1-2-3-4567";

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_WINDOWS_SERVICEDATA_H_
