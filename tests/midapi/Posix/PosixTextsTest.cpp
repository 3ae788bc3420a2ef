// Texts of any bytes.

#include <gmock/gmock.h>

#include "midapi/Texts.h"

namespace ma {
namespace {

TEST(PosixMidApiTexts, KeepTheirBytes) {
  const std::string text = "m\xFC-\xC3\xBC\\.rom";

  EXPECT_EQ(toShownText(text), text);
  EXPECT_EQ(fromUtf8(text), text);
  EXPECT_EQ(toUtf8(text), text);
}

}  // namespace
}  // namespace ma
