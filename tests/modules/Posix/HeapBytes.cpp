#include "tests/modules/HeapBytes.h"

#include <malloc.h>

// A sanitizer's runtime has a heap of its own, and is slow.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const std::size_t kEnumerations = 100;

std::size_t heapBytes() {
  return __sanitizer_get_current_allocated_bytes();
}
#else
#ifdef NDEBUG
const std::size_t kEnumerations = 10'000;
#else
const std::size_t kEnumerations = 300;
#endif

std::size_t heapBytes() {
  return mallinfo2().uordblks;
}
#endif

}  // namespace test
