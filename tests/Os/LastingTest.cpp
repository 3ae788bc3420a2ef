#include <gtest/gtest.h>

#include "Utils/Lasting.h"

namespace {

int s_destroyed = 0;

// The rest is that of a library that is unloaded, which tests over the real one show.
TEST(Lasting, StaysWhileTheProcessUsesTheLibrary) {
  utils::destroyAtUnload([] { ++s_destroyed; });
  EXPECT_EQ(s_destroyed, 0);
}

}  // namespace
