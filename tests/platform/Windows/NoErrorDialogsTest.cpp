#include <gmock/gmock.h>

#include "platform/Windows/NoErrorDialogs.h"

namespace {

TEST(NoErrorDialogs, AreAskedForByNobodyWhileItLives) {
  const DWORD before = GetThreadErrorMode();
  {
    const platform::NoErrorDialogs noDialogs;
    EXPECT_EQ(GetThreadErrorMode(), before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  }
  EXPECT_EQ(GetThreadErrorMode(), before);
}

}  // namespace
