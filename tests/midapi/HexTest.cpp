#include <gmock/gmock.h>

#include "midapi/Hex.h"

namespace {

using ma::hexText;
using ma::parseHex;
using testing::Eq;
using testing::Optional;

TEST(Hex, PadsToTheWidthAndNeverCuts) {
  EXPECT_EQ(hexText(0xA, 4), "000a");
  EXPECT_EQ(hexText(0, 1), "0");
  EXPECT_EQ(hexText(0x12800, 2), "12800");
  EXPECT_EQ(hexText(~0ULL, 1), "ffffffffffffffff");
}

TEST(Hex, ReadsWholeTextsOnly) {
  EXPECT_THAT(parseHex("1aF4"), Optional(0x1AF4U));
  EXPECT_THAT(parseHex(""), Eq(std::nullopt));
  EXPECT_THAT(parseHex("1af4 "), Eq(std::nullopt));
  EXPECT_THAT(parseHex("0x1"), Eq(std::nullopt));
  EXPECT_THAT(parseHex("-1"), Eq(std::nullopt));
  EXPECT_THAT(parseHex("100000000"), Eq(std::nullopt));
}

}  // namespace
