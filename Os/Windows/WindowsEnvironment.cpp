#include <stdlib.h>
#include <windows.h>

#include "Os/Environment.h"

namespace os {

void setEnvironment(const std::string& name, const std::string& value) {
  _putenv_s(name.c_str(), value.c_str());
}

std::string getProgramPath() {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  return length < MAX_PATH ? std::string(path, length) : std::string();
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
