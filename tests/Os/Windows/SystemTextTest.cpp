#include <gmock/gmock.h>
#include <windows.h>

#include "Os/Windows/SystemText.h"

namespace {

constexpr std::uint32_t kUnknownError = 0x20000123;

TEST(SystemText, IsOneLineWithoutItsEnd) {
  const std::string text = os::getSystemText(ERROR_ACCESS_DENIED);

  EXPECT_THAT(text, testing::StartsWith("Access"));
  EXPECT_THAT(text, testing::EndsWith("denied"));
  EXPECT_EQ(os::describeSystemError(ERROR_ACCESS_DENIED), text);
}

TEST(SystemText, IsEmptyForAnErrorThatTheSystemDoesNotKnow) {
  EXPECT_EQ(os::getSystemText(kUnknownError), "");
  EXPECT_EQ(os::describeSystemError(kUnknownError), "error 536871203");
}

}  // namespace
