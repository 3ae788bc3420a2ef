#include <gmock/gmock.h>
#include <optional>
#include <string>

#include "inventory/ReleaseDate.h"

namespace {

using inventory::readReleaseDate;

std::optional<std::uint64_t> microsecondsOf(const std::string& text) {
  const auto date = readReleaseDate(text);
  return date ? std::optional(date->value) : std::nullopt;
}

TEST(ReleaseDate, IsAMoment) {
  EXPECT_EQ(microsecondsOf("1970-01-02T00:00:00Z"), 86'400'000'000U);
  EXPECT_EQ(microsecondsOf("1970-01-02T01:30:00+01:30"), 86'400'000'000U);
  EXPECT_EQ(microsecondsOf("1970-01-01T23:00:00-01:00"), 86'400'000'000U);
  EXPECT_EQ(microsecondsOf("1970-01-02T00:00:00.250000Z"), 86'400'250'000U);
  EXPECT_TRUE(readReleaseDate("2026-11-21T18:04:05+01:00")->isTimestamp);
}

TEST(ReleaseDate, IsNoneOfAnyOtherText) {
  for (const char* text :
       {"", "2026", "2026-11-21", "2026-11-21T18:04:05", "2026-11-21 18:04:05Z",
        "2026-11-21T18:04:05z", "2026-11-21T18:04:05.25Z", "2026-11-21T18:04:05.",
        "2026-11-21T18:04:05+0100", "2026-11-21T18:04:05+01:00 ", "2026-13-21T18:04:05Z",
        "2O26-11-21T18:04:05Z"}) {
    EXPECT_FALSE(readReleaseDate(text)) << text;
  }
}

}  // namespace
