#include "tests/modules/HeapBytes.h"

#include <malloc.h>
#ifdef QUORVEL_TEST_SANITIZER
#include <sanitizer/allocator_interface.h>
#endif

namespace test {

// A sanitizer's runtime has a heap of its own, and is slow.
#ifdef QUORVEL_TEST_SANITIZER
const std::size_t kEnumerations = 100;

std::size_t heapBytes() {
  return __sanitizer_get_current_allocated_bytes();
}
#else
#ifdef NDEBUG
const std::size_t kEnumerations = 2'000;
#else
const std::size_t kEnumerations = 300;
#endif

std::size_t heapBytes() {
  return mallinfo2().uordblks;
}
#endif

}  // namespace test
