#include <gmock/gmock.h>
#include <string>
#include <string_view>

#include "platform/Utf8.h"

namespace {

using platform::appendCharacter;
using platform::isPrintable;
using platform::readCharacter;

std::string written(std::uint32_t point) {
  std::string text;
  appendCharacter(text, point);
  return text;
}

TEST(Utf8, WritesTheShortestForm) {
  EXPECT_EQ(written(0x7F), "\x7f");
  EXPECT_EQ(written(0x80), "\xc2\x80");
  EXPECT_EQ(written(0x7FF), "\xdf\xbf");
  EXPECT_EQ(written(0x800), "\xe0\xa0\x80");
  EXPECT_EQ(written(0xFFFF), "\xef\xbf\xbf");
  EXPECT_EQ(written(0x10000), "\xf0\x90\x80\x80");
  EXPECT_EQ(written(0x10FFFF), "\xf4\x8f\xbf\xbf");
}

bool isReadAsWritten(std::uint32_t point) {
  const std::string text = written(point);
  const auto character = readCharacter(text);
  return character && character->point == point && character->length == text.size() &&
         !readCharacter(std::string_view(text).substr(0, text.size() - 1));
}

TEST(Utf8, ReadsEachCharacterThatItWrites) {
  constexpr std::uint32_t kStep = 101;
  for (std::uint32_t point = 0; point <= platform::kLastCodePoint;
       point += point < 0x11000 ? 1 : kStep) {
    const bool isSurrogate = point >= 0xD800 && point <= 0xDFFF;
    if (isReadAsWritten(point) == isSurrogate) {
      FAIL() << "U+" << std::hex << point;
    }
  }
}

TEST(Utf8, ReadsTheFirstCharacterOfSeveral) {
  EXPECT_EQ(readCharacter("\xc3\xbc-")->point, 0xFCU);
  EXPECT_EQ(readCharacter("\xc3\xbc-")->length, 2U);
}

TEST(Utf8, FindsNoCharacterInBytesThatAreNone) {
  for (const std::string text : {"", "\x80", "\xc3x", "\xc0\xaf", "\xe0\x80\xaf", "\xed\xa0\x80",
                                 "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80", "\xff"}) {
    EXPECT_FALSE(readCharacter(text)) << text;
  }
}

TEST(Utf8, KnowsWhatShowsAsItself) {
  for (const std::uint32_t point :
       {0x20U, 0x7EU, 0xA0U, 0x2027U, 0x202FU, 0x2065U, 0x206AU, 0x1F600U, 0x10FFFFU}) {
    EXPECT_TRUE(isPrintable(point)) << point;
  }
  for (const std::uint32_t point : {0x00U, 0x1BU, 0x7FU, 0x9BU, 0x61CU, 0x200EU, 0x2028U, 0x202EU,
                                    0x2066U, 0xFEFFU, 0xD800U, 0xDFFFU, 0x110000U}) {
    EXPECT_FALSE(isPrintable(point)) << point;
  }
}

}  // namespace
