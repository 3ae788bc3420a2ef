#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>

#include "daemon/Posix/LargeBlocks.h"

namespace {

constexpr std::size_t kTens = 16 * quorveld::kLargeBlock;

// Returns how many blocks the C library has memory of their own for.
std::size_t countApart() {
  return mallinfo2().hblks;
}

std::unique_ptr<char[]> allocate(std::size_t size) {
  auto block = std::make_unique<char[]>(size);
  // A compiler may leave out what nobody looks at.
  const volatile char* const seen = block.get();
  static_cast<void>(*seen);
  return block;
}

TEST(LargeBlocks, GoBackWhateverWasFreedBefore) {
  if (mallinfo2().arena == 0) {
    GTEST_SKIP() << "a sanitizer allocates here, by rules of its own";
  }
  quorveld::giveLargeBlocksBack();
  allocate(kTens).reset();
  const std::size_t before = countApart();
  std::unique_ptr<char[]> block = allocate(quorveld::kLargeBlock);
  EXPECT_EQ(countApart(), before + 1);
  block.reset();
  EXPECT_EQ(countApart(), before);
}

}  // namespace
