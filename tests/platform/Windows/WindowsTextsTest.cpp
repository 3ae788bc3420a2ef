// Texts in the code page.

#include <gmock/gmock.h>
#include <system_error>

#include "platform/Texts.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using testing::Eq;
using testing::Optional;

class WindowsTexts : public testing::Test {
 protected:
  void SetUp() override { test::demandWesternCodePage(); }
};

TEST_F(WindowsTexts, AreInTheCodePageOfTheSystem) {
  EXPECT_EQ(platform::toPath(test::kUmlautText).native(), test::kUmlautPath);
  EXPECT_THAT(platform::toText(test::kUmlautPath), Optional(std::string(test::kUmlautText)));
  EXPECT_EQ(platform::toShownText(test::kUmlautPath), test::kUmlautText);
  EXPECT_EQ(platform::fromUtf8(test::kUmlautUtf8), test::kUmlautText);
  EXPECT_EQ(platform::toUtf8(test::kUmlautText), test::kUmlautUtf8);
}

TEST_F(WindowsTexts, MayBeLongerOrShorterInUtf8) {
  EXPECT_EQ(platform::fromUtf8("\xE2\x82\xAC"), "\x80");
  EXPECT_EQ(platform::toUtf8("\x80"), "\xE2\x82\xAC");
  EXPECT_EQ(platform::fromUtf8("\xF0\x9F\x99\x82"), "??");
}

TEST_F(WindowsTexts, AreNoneForPathsWithCharactersThatItLacks) {
  EXPECT_THAT(platform::toText(test::kMacronPath), Eq(std::nullopt));
  EXPECT_THAT(platform::toGenericText(test::kMacronPath), Eq(std::nullopt));
  EXPECT_THAT(platform::toText(L"half \xD83D"), Eq(std::nullopt));
  EXPECT_EQ(platform::toShownText(test::kMacronPath), test::kMacronLikeness);
}

TEST_F(WindowsTexts, HaveSlashesForBackslashesWhereThatIsAskedFor) {
  EXPECT_THAT(platform::toText(L"C:\\m\u00FC\\a"), Optional(std::string("C:\\m\xFC\\a")));
  EXPECT_THAT(platform::toGenericText(L"C:\\m\u00FC\\a"), Optional(std::string("C:/m\xFC/a")));
}

template <class... Arguments>
int WINAPI refuse(Arguments...) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return 0;
}

TEST_F(WindowsTexts, AreNeverEmptyBecauseTheSystemCannotConvertThem) {
  {
    const test::ImportPatch patch("platform_tests.exe", "MultiByteToWideChar",
                                  &refuse<UINT, DWORD, const char*, int, wchar_t*, int>);
    EXPECT_EQ(platform::toPath(""), "");
    EXPECT_THROW(static_cast<void>(platform::toPath("a")), std::system_error);
  }
  const test::ImportPatch patch(
      "platform_tests.exe", "WideCharToMultiByte",
      &refuse<UINT, DWORD, const wchar_t*, int, char*, int, const char*, BOOL*>);
  EXPECT_EQ(platform::toShownText(L""), "");
  EXPECT_THROW(static_cast<void>(platform::toShownText(L"a")), std::system_error);
}

TEST_F(WindowsTexts, OfAnyByteNameAFile) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_THAT(platform::toText(platform::toPath(text)), Optional(text)) << byte;
  }
}

}  // namespace
