// The option ROMs of the Debian package ipxe-qemu, real input where it is installed.

#ifndef QUORVEL_TESTS_MIDAPI_REALROMS_H_
#define QUORVEL_TESTS_MIDAPI_REALROMS_H_

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/TempDirectory.h"

namespace test {

inline constexpr const char* kNoRealRoms = "the package ipxe-qemu is not installed";

// Returns the content of a ROM file of the package; nullopt when it is not there.
inline std::optional<std::vector<std::uint8_t>> realRom(const std::string& name) {
  const std::filesystem::path path = std::filesystem::path("/usr/lib/ipxe/qemu") / name;
  if (!std::filesystem::exists(path)) {
    return std::nullopt;
  }
  return readBytes(path);
}

}  // namespace test

#endif  // QUORVEL_TESTS_MIDAPI_REALROMS_H_
