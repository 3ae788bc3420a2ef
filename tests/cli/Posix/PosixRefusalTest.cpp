#include <gmock/gmock.h>

#include "cli/Refusal.h"

namespace {

TEST(RefusalAdvice, TellsADeviceFromAFile) {
  EXPECT_THAT(cli::adviseOnRefusal(5, "EUriDoesNotExist:x", {"/dev/null"}),
              testing::HasSubstr("no regular file"));
}

}  // namespace
