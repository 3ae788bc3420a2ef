// Texts of any bytes.

#include <gmock/gmock.h>

#include "platform/Texts.h"

namespace {

TEST(PosixTexts, AreTheBytesOfThePath) {
  const std::string text = "m\xFC-\xC3\xBC\\.rom";

  EXPECT_EQ(platform::toPath(text).native(), text);
  EXPECT_THAT(platform::toText(text), testing::Optional(text));
  EXPECT_THAT(platform::toGenericText(text), testing::Optional(text));
  EXPECT_EQ(platform::toShownText(text), text);
  EXPECT_EQ(platform::fromUtf8(text), text);
  EXPECT_EQ(platform::toUtf8(text), text);
}

}  // namespace
