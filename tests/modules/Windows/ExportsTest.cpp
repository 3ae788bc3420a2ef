// A module exports nothing: loading it is all that a host does with it.

#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <windows.h>

#include "tests/modules/ModuleHost.h"

namespace {

template <class Structure>
const Structure* at(HMODULE module, std::size_t offset) {
  return reinterpret_cast<const Structure*>(reinterpret_cast<const char*>(module) + offset);
}

// Returns how many functions and values a loaded library exports.
DWORD countExports(const std::string& library) {
  const HMODULE module = GetModuleHandleA(library.c_str());
  if (module == nullptr) {
    throw std::runtime_error(library + " is not loaded");
  }
  const auto headers = static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
  const IMAGE_DATA_DIRECTORY& exports =
      at<IMAGE_NT_HEADERS>(module, headers)
          ->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
  return exports.Size == 0
             ? 0
             : at<IMAGE_EXPORT_DIRECTORY>(module, exports.VirtualAddress)->NumberOfFunctions;
}

TEST(Exports, OfTheModulesAreNone) {
  test::ModuleHost host;
  host.load();
  EXPECT_EQ(countExports("OrvexSoftwareUpdateAgent.dll"), 0u);
  EXPECT_EQ(countExports("OrvexSoftwareInventoryAgent.dll"), 0u);
}

// So that a count of none means something.
TEST(Exports, OfALibraryAreCounted) {
  EXPECT_GT(countExports("OrvexCimCore.dll"), 100u);
}

}  // namespace
