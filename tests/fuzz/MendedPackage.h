// Firmware packages whose checksums are right, whatever the rest is: few inputs would come past
// them.

#ifndef ORVEX_TESTS_FUZZ_MENDEDPACKAGE_H_
#define ORVEX_TESTS_FUZZ_MENDEDPACKAGE_H_

#include <cstdint>
#include <vector>

namespace test {

// Puts the checksums right. Returns false for bytes without room for them.
[[nodiscard]] bool mendPackage(std::vector<std::uint8_t>& bytes);

}  // namespace test

#endif  // ORVEX_TESTS_FUZZ_MENDEDPACKAGE_H_
