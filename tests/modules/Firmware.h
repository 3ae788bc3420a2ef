// The firmware that the tests over the modules install: PXE and UEFI images of some version.

#ifndef ORVEX_TESTS_MODULES_FIRMWARE_H_
#define ORVEX_TESTS_MODULES_FIRMWARE_H_

#include <cstdint>

#include "tests/support/RomBuilder.h"

namespace test {

// Images of other versions differ in their bodies, too.
inline RomImage pxeImage(std::uint8_t version) {
  return RomImage::legacy().version(version, 0).seed(version).units(8);
}

inline RomImage uefiImage(std::uint8_t version) {
  return RomImage::efi().version(version, 0).seed(100u + version).units(16);
}

// Both, as an adapter has them installed.
inline Bytes firmware(std::uint8_t version) {
  return RomBuilder().add(pxeImage(version)).add(uefiImage(version)).build();
}

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_FIRMWARE_H_
