// How much of the heap is in use. Defined per platform.

#ifndef ORVEX_TESTS_MODULES_HEAPBYTES_H_
#define ORVEX_TESTS_MODULES_HEAPBYTES_H_

#include <cstddef>

namespace test {

[[nodiscard]] std::size_t heapBytes();

// How often a test can afford to enumerate in order to see the heap grow.
extern const std::size_t kEnumerations;

// The bytes that the smallest block takes.
inline constexpr std::size_t kSmallestBlock = 16;

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_HEAPBYTES_H_
