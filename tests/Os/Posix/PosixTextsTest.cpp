// Texts of any bytes.

#include <gmock/gmock.h>

#include "Os/Texts.h"

namespace {

TEST(PosixTexts, AreTheBytesOfThePath) {
  const std::string text = "m\xFC-\xC3\xBC\\.rom";

  EXPECT_EQ(os::toPath(text).native(), text);
  EXPECT_THAT(os::toText(text), testing::Optional(text));
  EXPECT_THAT(os::toGenericText(text), testing::Optional(text));
  EXPECT_EQ(os::toShownText(text), text);
  EXPECT_EQ(os::toUtf8(text), text);
}

}  // namespace
