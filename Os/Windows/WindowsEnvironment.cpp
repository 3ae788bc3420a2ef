#include <array>
#include <stdlib.h>
#include <windows.h>

#include "Os/Environment.h"
#include "Os/Windows/SystemText.h"
#include "Utils/Exception.h"
#include "platform/Texts.h"

namespace os {
namespace {

// The longest path that the system knows, with its end.
constexpr std::size_t kMaxPath = 32768;

}  // namespace

std::string getMachineName() {
  std::array<char, MAX_COMPUTERNAME_LENGTH + 1> name{};
  auto size = static_cast<DWORD>(name.size());
  return GetComputerNameA(name.data(), &size) != FALSE ? std::string(name.data(), size)
                                                       : std::string();
}

void setEnvironment(const std::string& name, const std::string& value) {
  if (const int error = _putenv_s(name.c_str(), value.c_str()); error != 0) {
    throw utils::Exception("The environment variable '%s' could not be set: error %d", name.c_str(),
                           error);
  }
}

void demandExactArguments() {
  if (!platform::toText(GetCommandLineW())) {
    throw utils::Exception(
        "The command line has characters that the code page of this system (%u) lacks. Give the "
        "files names without them, or use the short names that 'dir /x' shows",
        GetACP());
  }
}

std::filesystem::path getProgramPath() {
  std::wstring path(kMaxPath, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  if (length == 0 || length == path.size()) {
    throw utils::Exception("The path of the running program is not known: %s",
                           describeSystemError(GetLastError(), "").c_str());
  }
  path.resize(length);
  return path;
}

// A missing stream has no descriptor of the C runtime, and none is given to a file by accident:
// the runtime keeps the first three for them.
void reserveStandardStreams() {}

// The C runtime's own test takes the null device for a terminal.
bool isOutputTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != FALSE;
}

}  // namespace os
