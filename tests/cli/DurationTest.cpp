#include <gmock/gmock.h>

#include "cli/Duration.h"

namespace {

using cli::parseMilliseconds;
using testing::Optional;

TEST(Duration, HasAUnitOrIsInSeconds) {
  EXPECT_THAT(parseMilliseconds("0"), Optional(0U));
  EXPECT_THAT(parseMilliseconds("30"), Optional(30'000U));
  EXPECT_THAT(parseMilliseconds("30s"), Optional(30'000U));
  EXPECT_THAT(parseMilliseconds("500ms"), Optional(500U));
  EXPECT_THAT(parseMilliseconds("5m"), Optional(300'000U));
  EXPECT_THAT(parseMilliseconds("2h"), Optional(7'200'000U));
}

TEST(Duration, IsNoMoreThanTheSettingHolds) {
  EXPECT_THAT(parseMilliseconds("4294967295ms"), Optional(4294967295U));
  EXPECT_THAT(parseMilliseconds("1193h"), Optional(4294800000U));
  for (const char* text : {"4294967296ms", "4294968", "1194h", "99999999999999999999"}) {
    EXPECT_EQ(parseMilliseconds(text), std::nullopt) << text;
  }
}

TEST(Duration, IsNothingElse) {
  for (const char* text : {"", "s", "-1", "+1", " 1", "1 s", "1.5s", "1S", "1min", "0x10", "1s2"}) {
    EXPECT_EQ(parseMilliseconds(text), std::nullopt) << text;
    EXPECT_EQ(cli::refuseNoDuration(text),
              "'" + std::string(text) + "' is no length of time; write 30s, 5m or 500ms");
  }
  EXPECT_EQ(cli::refuseNoDuration("1s"), "");
}

}  // namespace
