#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "Os/Windows/SystemText.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

constexpr std::uint32_t kUnknownError = 0x20000123;

// What the system says of every error, in memory of its own.
std::string s_text;

DWORD WINAPI formatMessage(DWORD flags, const void*, DWORD, DWORD, char* buffer, DWORD, va_list*) {
  EXPECT_EQ(flags & FORMAT_MESSAGE_IGNORE_INSERTS, FORMAT_MESSAGE_IGNORE_INSERTS);
  EXPECT_EQ(flags & FORMAT_MESSAGE_ALLOCATE_BUFFER, FORMAT_MESSAGE_ALLOCATE_BUFFER);
  auto* const text = static_cast<char*>(LocalAlloc(LMEM_FIXED, s_text.size() + 1));
  s_text.copy(text, s_text.size());
  *reinterpret_cast<char**>(buffer) = text;
  return static_cast<DWORD>(s_text.size());
}

TEST(SystemText, IsOneLineWithoutItsEnd) {
  const std::string text = os::getSystemText(ERROR_ACCESS_DENIED);

  EXPECT_THAT(text, testing::StartsWith("Access"));
  EXPECT_THAT(text, testing::EndsWith("denied."));
  EXPECT_EQ(os::describeSystemError(ERROR_ACCESS_DENIED, "subject"), text);
}

TEST(SystemText, IsEmptyForAnErrorThatTheSystemDoesNotKnow) {
  EXPECT_EQ(os::getSystemText(kUnknownError), "");
  EXPECT_EQ(os::describeSystemError(kUnknownError, "subject"), "error 536871203");
}

TEST(SystemText, NamesTheSubjectWhereTheSystemLeavesRoomForIt) {
  s_text = "%1 is not a valid %2.\r\n";
  const test::ImportPatch words("OrvexCimCore.dll", "FormatMessageA", &formatMessage);

  EXPECT_EQ(os::describeSystemError(ERROR_BAD_EXE_FORMAT, "a%1.dll"), "a%1.dll is not a valid %2.");
}

TEST(SystemText, MayBeLong) {
  s_text = std::string(5000, 'x') + "\r\nEnd.\r\n";
  const test::ImportPatch words("OrvexCimCore.dll", "FormatMessageA", &formatMessage);

  EXPECT_EQ(os::getSystemText(ERROR_ACCESS_DENIED), std::string(5000, 'x') + "\r\nEnd.");
}

}  // namespace
