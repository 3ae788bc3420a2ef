// Texts in the code page.

#include <gmock/gmock.h>

#include "Utils/Printable.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

TEST(WindowsPrintable, LeavesWhatTheCodePageHas) {
  test::demandWesternCodePage();
  EXPECT_EQ(utils::toPrintable(test::kUmlautText), test::kUmlautText);
  EXPECT_EQ(utils::toPrintable("a\x1b\x9b"), "a\\x1b\x9b");
}

}  // namespace
