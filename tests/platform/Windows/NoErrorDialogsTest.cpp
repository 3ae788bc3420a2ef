#include <gmock/gmock.h>

#include "platform/Windows/NoErrorDialogs.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

TEST(NoErrorDialogs, AreAskedForByNobodyWhileItLives) {
  const DWORD before = GetThreadErrorMode();
  {
    const platform::NoErrorDialogs noDialogs;
    EXPECT_EQ(GetThreadErrorMode(), before | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  }
  EXPECT_EQ(GetThreadErrorMode(), before);
}

TEST(NoErrorDialogs, StayAsTheyAreWhereTheSystemRefuses) {
  static int s_calls = 0;
  const auto refuse = +[](DWORD, DWORD*) -> BOOL {
    ++s_calls;
    return FALSE;
  };
  const test::ImportPatch patch("platform_tests.exe", "SetThreadErrorMode", refuse);
  { const platform::NoErrorDialogs noDialogs; }
  EXPECT_EQ(s_calls, 1);
}

}  // namespace
