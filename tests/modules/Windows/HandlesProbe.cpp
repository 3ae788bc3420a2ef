// handles_probe MODULE...: loads modules from its own directory and unloads them, the last one
// first, five times. Prints how many handles the process has open after each. It is linked with no
// library of the project, so that all of them go. Exits with 1 when one does not.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>
#include <windows.h>

#include "tests/support/Windows/OpenHandles.h"

namespace {

// The system's own count is 0 under an emulation.
int countHandles() {
  constexpr std::uintptr_t kStep = 4;  // from one handle to the next
  constexpr std::uintptr_t kEnd = kStep * 4096;
  int count = 0;
  for (std::uintptr_t value = kStep; value < kEnd; value += kStep) {
    count += test::isOpen(reinterpret_cast<HANDLE>(value)) ? 1 : 0;
  }
  return count;
}

std::string ownDirectory() {
  char path[MAX_PATH] = {};
  const std::string program(path, GetModuleFileNameA(nullptr, path, sizeof path));
  return program.substr(0, program.rfind('\\') + 1);
}

}  // namespace

int main(int argc, char** argv) {
  for (int round = 0; round < 5; ++round) {
    std::vector<HMODULE> modules;
    for (int i = 1; i < argc; ++i) {
      const std::string path = ownDirectory() + argv[i];
      modules.push_back(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
      if (modules.back() == nullptr) {
        std::printf("%s is not loaded, error %lu\n", path.c_str(), GetLastError());
        return 1;
      }
    }
    while (!modules.empty()) {
      FreeLibrary(modules.back());
      modules.pop_back();
    }
    if (GetModuleHandleA("OrvexCimCore.dll") != nullptr) {
      std::puts("OrvexCimCore.dll stays");
      return 1;
    }
    std::printf("%d\n", countHandles());
  }
}
