#include <cstdint>
#include <gmock/gmock.h>
#include <limits>

#include "wbem/Scalars.h"

namespace {

using testing::Optional;
using wbem::toBoolean;
using wbem::toNumber;

TEST(Scalars, ReadTruthValuesInAnyCase) {
  EXPECT_THAT(toBoolean("TRUE"), Optional(true));
  EXPECT_THAT(toBoolean(" false\n"), Optional(false));
  EXPECT_THAT(toBoolean("tRuE"), Optional(true));
  for (const char* text : {"", "1", "0", "yes", "TRUE FALSE"}) {
    EXPECT_EQ(toBoolean(text), std::nullopt) << text;
  }
}

TEST(Scalars, ReadNumbersOfEachSign) {
  EXPECT_THAT(toNumber<std::uint16_t>("65535"), Optional(65535));
  EXPECT_THAT(toNumber<std::uint16_t>(" +7 "), Optional(7));
  EXPECT_THAT(toNumber<std::uint16_t>("-0"), Optional(0));
  EXPECT_THAT(toNumber<std::uint16_t>("0x1f"), Optional(31));
  EXPECT_THAT(toNumber<std::int8_t>("-128"), Optional(-128));
  EXPECT_THAT(toNumber<std::int8_t>("127"), Optional(127));
  EXPECT_THAT(toNumber<std::int8_t>("-0X10"), Optional(-16));
  EXPECT_THAT(toNumber<std::uint64_t>("18446744073709551615"),
              Optional(std::numeric_limits<std::uint64_t>::max()));
}

TEST(Scalars, RefuseNumbersOutOfRangeAndOtherTexts) {
  EXPECT_EQ(toNumber<std::uint16_t>("65536"), std::nullopt);
  EXPECT_EQ(toNumber<std::uint16_t>("-1"), std::nullopt);
  EXPECT_EQ(toNumber<std::int8_t>("128"), std::nullopt);
  EXPECT_EQ(toNumber<std::int8_t>("-129"), std::nullopt);
  EXPECT_EQ(toNumber<std::uint64_t>("18446744073709551616"), std::nullopt);
  for (const char* text : {"", " ", "-", "+", "--1", "+-1", "0x", "1.0", "1 2", "ten", "1x"}) {
    EXPECT_EQ(toNumber<std::uint32_t>(text), std::nullopt) << text;
  }
}

TEST(Scalars, TrimBlanksAndLineEnds) {
  EXPECT_EQ(wbem::trimmed("\r\n\t a b \n"), "a b");
  EXPECT_EQ(wbem::trimmed(" \n"), "");
  EXPECT_EQ(wbem::trimmed(""), "");
}

}  // namespace
