#include <array>
#include <gmock/gmock.h>

#include "midapi/PldmTime.h"

namespace {

using Fields = std::array<std::uint8_t, ma::kPldmTimeSize>;

// 21 November 2026, 18:04:05, one hour in the east of UTC.
constexpr Fields kTime = {60, 0, 0, 0, 0, 5, 4, 18, 21, 11, 0xEA, 0x07, 0};

std::string textOf(const Fields& fields) {
  const auto time = ma::readPldmTime(fields);
  return time ? time->toString() : "none";
}

std::string textWith(std::size_t place, std::uint8_t value) {
  Fields fields = kTime;
  fields[place] = value;
  return textOf(fields);
}

TEST(PldmTime, IsWrittenAsRfc3339Says) {
  EXPECT_EQ(textOf(kTime), "2026-11-21T18:04:05+01:00");
  EXPECT_EQ(textWith(0, 0), "2026-11-21T18:04:05Z");
  EXPECT_EQ(textOf({0, 0, 0, 0, 0, 0, 0, 0, 31, 12, 0x0F, 0x27, 0}), "9999-12-31T00:00:00Z");
  EXPECT_EQ(textOf({0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0x10, 0x27, 0}), "none");
  EXPECT_EQ(textWith(2, 7), "2026-11-21T18:04:05.000007+01:00");
  EXPECT_EQ(textOf({0xB6, 0xFE, 0x3F, 0x42, 0x0F, 60, 59, 23, 29, 2, 0xE8, 0x07, 0x16}),
            "2024-02-29T23:59:60.999999-05:30");
}

TEST(PldmTime, IsNoneWhereTheFieldsAreNoTime) {
  EXPECT_EQ(textOf({}), "none");
  EXPECT_EQ(textOf({0, 0, 0x40, 0x42, 0x0F, 0, 0, 0, 1, 1, 0xEA, 0x07, 0}), "none");
  for (const auto& [place, value] :
       {std::pair(4, 0x10), std::pair(5, 61), std::pair(6, 60), std::pair(7, 24), std::pair(8, 0),
        std::pair(8, 31), std::pair(9, 0), std::pair(9, 13), std::pair(11, 0x28),
        std::pair(1, 0x06), std::pair(1, 0xFA), std::pair(1, 0x80)}) {
    EXPECT_EQ(textWith(static_cast<std::size_t>(place), static_cast<std::uint8_t>(value)), "none")
        << place << " is " << value;
  }
}

}  // namespace
