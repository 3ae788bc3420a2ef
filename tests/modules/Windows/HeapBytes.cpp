#include "tests/modules/HeapBytes.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>

#include "tests/support/Windows/ImportPatch.h"

namespace test {
namespace {

std::atomic<std::size_t> s_bytes{0};

void* countingMalloc(std::size_t size) {
  void* const block = std::malloc(size);
  if (block != nullptr) {
    s_bytes += _msize(block);
  }
  return block;
}

void countingFree(void* block) {
  if (block != nullptr) {
    s_bytes -= _msize(block);
  }
  std::free(block);
}

}  // namespace

// An emulation of the system is slow.
const std::size_t kEnumerations = 40;

// Counts what the one C++ runtime of the process takes and gives back, from the first call on;
// relative to that, so that a block from before may be given back.
std::size_t heapBytes() {
  static const ImportPatch mallocPatch("libstdc++-6.dll", "malloc", &countingMalloc);
  static const ImportPatch freePatch("libstdc++-6.dll", "free", &countingFree);
  constexpr std::size_t kBase = std::size_t{1} << 40;
  return kBase + s_bytes;
}

}  // namespace test
