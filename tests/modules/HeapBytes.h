// How much of the heap is in use, and how often a test can afford to enumerate in order to see it
// grow: a sanitizer's runtime has a heap of its own, and is slow.

#ifndef ORVEX_TESTS_MODULES_HEAPBYTES_H_
#define ORVEX_TESTS_MODULES_HEAPBYTES_H_

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // of the sanitizers' runtime
#else
#include <malloc.h>
#endif

namespace test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::size_t kEnumerations = 100;

inline std::size_t heapBytes() {
  return __sanitizer_get_current_allocated_bytes();
}
#else
#ifdef NDEBUG
inline constexpr std::size_t kEnumerations = 10'000;
#else
inline constexpr std::size_t kEnumerations = 1'000;
#endif

inline std::size_t heapBytes() {
  return mallinfo2().uordblks;
}
#endif

// The bytes that the smallest block takes.
inline constexpr std::size_t kSmallestBlock = 16;

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_HEAPBYTES_H_
