#include <gmock/gmock.h>
#include <limits>

#include "cimxml/ScalarText.h"
#include "core/CimPropertyTypes.h"

namespace {

template <class Property, class Value>
std::string textOf(Value value) {
  Property property("Some", nullptr);
  property.setValue(value);
  cimxml::Buffer out;
  cimxml::appendScalarText(out, property);
  return out;
}

TEST(ScalarText, NumbersAreWrittenInFull) {
  EXPECT_EQ(textOf<core::CimPropertyUint8>(std::uint8_t{255}), "255");
  EXPECT_EQ(textOf<core::CimPropertySint8>(std::int8_t{-128}), "-128");
  EXPECT_EQ(textOf<core::CimPropertyUint16>(std::uint16_t{65535}), "65535");
  EXPECT_EQ(textOf<core::CimPropertyUint32>(4294967295U), "4294967295");
  EXPECT_EQ(textOf<core::CimPropertyUint64>(std::numeric_limits<std::uint64_t>::max()),
            "18446744073709551615");
  EXPECT_EQ(textOf<core::CimPropertyUint64>(std::uint64_t{0}), "0");
}

TEST(ScalarText, TruthIsAWord) {
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{1}), "TRUE");
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{0}), "FALSE");
  EXPECT_EQ(textOf<core::CimPropertyBoolean>(std::uint8_t{2}), "FALSE");
}

TEST(ScalarText, MomentsHaveTheirCimForm) {
  EXPECT_EQ(textOf<core::CimPropertyDatetime>(utils::Datetime::fromSeconds(90061)),
            "00000001010101.000000:000");
}

TEST(ScalarText, TextsAreEscaped) {
  EXPECT_EQ(textOf<core::CimPropertyString>(""), "");
  EXPECT_EQ(textOf<core::CimPropertyString>(" a<b>\n"), " a&lt;b&gt;&#10;");
}

}  // namespace
