// Texts in the code page.

#include <gmock/gmock.h>

#include "Os/Texts.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using testing::Eq;
using testing::Optional;

class WindowsTexts : public testing::Test {
 protected:
  void SetUp() override { test::demandWesternCodePage(); }
};

TEST_F(WindowsTexts, AreInTheCodePageOfTheSystem) {
  EXPECT_EQ(os::toPath(test::kUmlautText).native(), test::kUmlautPath);
  EXPECT_THAT(os::toText(test::kUmlautPath), Optional(std::string(test::kUmlautText)));
  EXPECT_EQ(os::toShownText(test::kUmlautPath), test::kUmlautText);
  EXPECT_EQ(os::toUtf8(test::kUmlautText), test::kUmlautUtf8);
}

TEST_F(WindowsTexts, AreNoneForPathsWithCharactersThatItLacks) {
  EXPECT_THAT(os::toText(test::kMacronPath), Eq(std::nullopt));
  EXPECT_THAT(os::toGenericText(test::kMacronPath), Eq(std::nullopt));
  EXPECT_THAT(os::toText(L"half \xD83D"), Eq(std::nullopt));
  EXPECT_EQ(os::toShownText(test::kMacronPath), test::kMacronLikeness);
}

TEST_F(WindowsTexts, HaveSlashesForBackslashesWhereThatIsAskedFor) {
  EXPECT_THAT(os::toText(L"C:\\m\u00FC\\a"), Optional(std::string("C:\\m\xFC\\a")));
  EXPECT_THAT(os::toGenericText(L"C:\\m\u00FC\\a"), Optional(std::string("C:/m\xFC/a")));
}

TEST_F(WindowsTexts, OfAnyByteNameAFile) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_THAT(os::toText(os::toPath(text)), Optional(text)) << byte;
  }
}

}  // namespace
