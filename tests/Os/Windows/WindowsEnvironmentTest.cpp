// What the console of a process is not, how long its path may be, and what its command line lacks.

#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "Os/Environment.h"
#include "Utils/Exception.h"
#include "tests/support/Throws.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using test::ImportPatch;
using test::ThrowsExactly;

constexpr const char* kLibrary = "OrvexCimCore.dll";

// What the system says of the program.
std::wstring s_programPath;
std::wstring s_commandLine;

DWORD WINAPI getModuleFileName(HMODULE, wchar_t* buffer, DWORD size) {
  const std::size_t count = s_programPath.copy(buffer, size);
  SetLastError(count == size ? ERROR_INSUFFICIENT_BUFFER : ERROR_MOD_NOT_FOUND);
  return static_cast<DWORD>(count);
}

wchar_t* WINAPI getCommandLine() {
  return s_commandLine.data();
}

// Standard output for the time of a test.
class RedirectedOutput {
 public:
  explicit RedirectedOutput(const char* device)
      : m_file(CreateFileA(device, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
    SetStdHandle(STD_OUTPUT_HANDLE, m_file);
  }
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;
  ~RedirectedOutput() {
    SetStdHandle(STD_OUTPUT_HANDLE, m_previous);
    CloseHandle(m_file);
  }

  [[nodiscard]] bool isOpen() const { return m_file != INVALID_HANDLE_VALUE; }

 private:
  HANDLE m_previous = GetStdHandle(STD_OUTPUT_HANDLE);
  HANDLE m_file;
};

// The C runtime takes every character device for a terminal.
TEST(OutputTerminal, IsNotTheNullDevice) {
  const RedirectedOutput output("NUL");
  ASSERT_TRUE(output.isOpen());

  EXPECT_FALSE(os::isOutputTerminal());
}

TEST(ProgramPath, MayBeLong) {
  s_programPath = L"C:\\" + std::wstring(5000, L'x') + L"\\\u0101.exe";
  const ImportPatch path(kLibrary, "GetModuleFileNameW", &getModuleFileName);

  EXPECT_EQ(os::getProgramPath().native(), s_programPath);
}

TEST(ProgramPath, ThatTheSystemDoesNotTellIsAFault) {
  const ImportPatch path(kLibrary, "GetModuleFileNameW", &getModuleFileName);
  for (const std::size_t length : {std::size_t{0}, std::size_t{40000}}) {
    s_programPath = std::wstring(length, L'x');
    EXPECT_THAT([] { static_cast<void>(os::getProgramPath()); },
                ThrowsExactly<utils::Exception>(
                    testing::StartsWith("The path of the running program is not known: ")));
  }
}

TEST(Arguments, AreExactWhereTheCodePageHasTheirCharacters) {
  test::demandWesternCodePage();
  s_commandLine = std::wstring(L"quorvel update 0000:03:00 ") + test::kUmlautPath;
  const ImportPatch line(kLibrary, "GetCommandLineW", &getCommandLine);

  EXPECT_NO_THROW(os::demandExactArguments());
}

TEST(Arguments, AreRefusedWhereTheyCameAsOthers) {
  test::demandWesternCodePage();
  s_commandLine = std::wstring(L"quorvel update 0000:03:00 ") + test::kMacronPath;
  const ImportPatch line(kLibrary, "GetCommandLineW", &getCommandLine);

  EXPECT_THAT(os::demandExactArguments,
              ThrowsExactly<utils::Exception>(testing::StartsWith(
                  "The command line has characters that the code page of this system (1252) "
                  "lacks.")));
}

}  // namespace
