#include <gmock/gmock.h>
#include <string>

#include "cimxml/Characters.h"

namespace {

using cimxml::getCharacterLength;
using cimxml::isXmlBlank;
using cimxml::isXmlCharacter;

TEST(Characters, HaveTheLengthOfTheirForm) {
  EXPECT_EQ(getCharacterLength("a"), 1U);
  EXPECT_EQ(getCharacterLength("\t"), 1U);
  EXPECT_EQ(getCharacterLength("\x7F"), 1U);
  EXPECT_EQ(getCharacterLength("\xC2\x80z"), 2U);
  EXPECT_EQ(getCharacterLength("\xE0\xA0\x80"), 3U);
  EXPECT_EQ(getCharacterLength("\xED\x9F\xBF"), 3U);
  EXPECT_EQ(getCharacterLength("\xEF\xBF\xBD"), 3U);
  EXPECT_EQ(getCharacterLength("\xF0\x90\x80\x80"), 4U);
  EXPECT_EQ(getCharacterLength("\xF4\x8F\xBF\xBF"), 4U);
}

TEST(Characters, AreNoneWhereXmlAllowsNone) {
  EXPECT_EQ(getCharacterLength(""), 0U);
  EXPECT_EQ(getCharacterLength(std::string_view("\0", 1)), 0U);
  EXPECT_EQ(getCharacterLength("\x08"), 0U);
  EXPECT_EQ(getCharacterLength("\x1F"), 0U);
  EXPECT_EQ(getCharacterLength("\xEF\xBF\xBE"), 0U) << "U+FFFE";
  EXPECT_EQ(getCharacterLength("\xEF\xBF\xBF"), 0U) << "U+FFFF";
}

TEST(Characters, AreNoneInBrokenUtf8) {
  EXPECT_EQ(getCharacterLength("\x80"), 0U) << "no lead";
  EXPECT_EQ(getCharacterLength("\xC3"), 0U) << "cut off";
  EXPECT_EQ(getCharacterLength("\xE2\x82"), 0U) << "cut off";
  EXPECT_EQ(getCharacterLength("\xC3z"), 0U) << "no continuation";
  EXPECT_EQ(getCharacterLength("\xC1\x81"), 0U) << "longer than need be";
  EXPECT_EQ(getCharacterLength("\xE0\x9F\xBF"), 0U) << "longer than need be";
  EXPECT_EQ(getCharacterLength("\xF0\x8F\xBF\xBF"), 0U) << "longer than need be";
  EXPECT_EQ(getCharacterLength("\xED\xA0\x80"), 0U) << "surrogate";
  EXPECT_EQ(getCharacterLength("\xF4\x90\x80\x80"), 0U) << "beyond Unicode";
  EXPECT_EQ(getCharacterLength("\xF8\x88\x80\x80\x80"), 0U) << "five bytes";
}

TEST(Characters, BlanksAreTheFourOfXml) {
  std::string blanks;
  for (int sign = 0; sign < 256; ++sign) {
    if (isXmlBlank(static_cast<char>(sign))) {
      blanks.push_back(static_cast<char>(sign));
    }
  }
  EXPECT_EQ(blanks, "\t\n\r ");
}

TEST(Characters, EndBeforeTheSurrogatesAndGoOnBehindThem) {
  EXPECT_TRUE(isXmlCharacter(0xD7FF));
  EXPECT_FALSE(isXmlCharacter(0xD800));
  EXPECT_FALSE(isXmlCharacter(0xDFFF));
  EXPECT_TRUE(isXmlCharacter(0xE000));
  EXPECT_FALSE(isXmlCharacter(0x110000));
}

TEST(Characters, AreShortenedBehindAWholeOne) {
  EXPECT_EQ(cimxml::shorten("", 0), "");
  EXPECT_EQ(cimxml::shorten("abc", 3), "abc");
  EXPECT_EQ(cimxml::shorten("abcd", 3), "abc...");
  EXPECT_EQ(cimxml::shorten("a\xC3\xA4z", 3), "a\xC3\xA4...");
  EXPECT_EQ(cimxml::shorten("a\xC3\xA4z", 2), "a...");
  EXPECT_EQ(cimxml::shorten("\xA4\xA4", 1), "...");
}

}  // namespace
