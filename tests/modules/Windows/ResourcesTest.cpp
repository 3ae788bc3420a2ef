// What Windows reads of the libraries beside their code.

#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "tests/modules/ModuleHost.h"

namespace {

// Returns the version that a loaded library tells, as one number; 0 where it tells none.
DWORD64 versionOf(const std::string& library) {
  const HMODULE module = GetModuleHandleA(library.c_str());
  const HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(VS_VERSION_INFO), RT_VERSION);
  if (module == nullptr || found == nullptr) {
    return 0;
  }
  const auto* const bytes = static_cast<const BYTE*>(LockResource(LoadResource(module, found)));
  // Behind its own length, that of its value, its type, and its name with an end: at a full word.
  constexpr std::size_t kValue = 40;
  const auto* const version = reinterpret_cast<const VS_FIXEDFILEINFO*>(bytes + kValue);
  if (version->dwSignature != VS_FFI_SIGNATURE) {
    return 0;
  }
  return (DWORD64{version->dwFileVersionMS} << 32) | version->dwFileVersionLS;
}

TEST(Resources, TellTheVersionOfEachLibrary) {
  test::ModuleHost host;
  host.load();
  const DWORD64 version = versionOf("OrvexCimCore.dll");
  EXPECT_NE(version, 0U);
  for (const char* library :
       {"OrvexMidApi.dll", "OrvexSoftwareUpdateAgent.dll", "OrvexSoftwareInventoryAgent.dll"}) {
    EXPECT_EQ(versionOf(library), version) << library;
  }
}

// What the Event Viewer shows: the one insertion of event 0.
TEST(Resources, HaveTheTextOfTheRecordsInTheEventLog) {
  char* const insertions[] = {const_cast<char*>("a whole line")};
  char text[100] = {};
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY,
                                      GetModuleHandleA("OrvexCimCore.dll"), 0, 0, text, sizeof text,
                                      reinterpret_cast<va_list*>(const_cast<char**>(insertions)));
  EXPECT_EQ(std::string(text, length), "a whole line\r\n");
}

}  // namespace
