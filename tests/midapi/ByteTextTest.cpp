#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/ByteText.h"

namespace {

using ma::TextEncoding;

std::string decoded(const std::string& bytes, TextEncoding encoding) {
  return ma::decodeText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                        encoding);
}

std::string decodedUnits(const std::u16string& units, bool isBigEndian) {
  std::string bytes;
  for (const char16_t unit : units) {
    const char pair[] = {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    bytes += pair[isBigEndian ? 0 : 1];
    bytes += pair[isBigEndian ? 1 : 0];
  }
  return decoded(bytes, isBigEndian ? TextEncoding::Utf16Be : TextEncoding::Utf16Le);
}

TEST(ByteText, ReadsEachEncoding) {
  EXPECT_EQ(decoded("1.2-abc", TextEncoding::Ascii), "1.2-abc");
  EXPECT_EQ(decoded("M\xc3\xbchle", TextEncoding::Utf8), "M\xc3\xbchle");
  EXPECT_EQ(decodedUnits(u"M\u00fchle", false), "M\xc3\xbchle");
  EXPECT_EQ(decodedUnits(u"M\u00fchle", true), "M\xc3\xbchle");
  EXPECT_EQ(decodedUnits(u"\U0001F600", true), "\xf0\x9f\x98\x80");
}

TEST(ByteText, TellsTheOrderOfUtf16ByItsMark) {
  EXPECT_EQ(decoded({"\xFF\xFE"
                     "A\0",
                     4},
                    TextEncoding::Utf16),
            "A");
  EXPECT_EQ(decoded({"\xFE\xFF"
                     "\0A",
                     4},
                    TextEncoding::Utf16),
            "A");
  EXPECT_EQ(decoded({"A\0", 2}, TextEncoding::Utf16), "A");
}

TEST(ByteText, LeavesAMarkOutInFrontAlone) {
  EXPECT_EQ(decoded("\xef\xbb\xbf"
                    "A",
                    TextEncoding::Utf8),
            "A");
  EXPECT_EQ(decoded("A\xef\xbb\xbf", TextEncoding::Utf8), "A\\xef\\xbb\\xbf");
  EXPECT_EQ(decoded("\xef\xbb\xbf\xef\xbb\xbf", TextEncoding::Utf8), "\\xef\\xbb\\xbf");
}

TEST(ByteText, LeavesTheFillingAtTheEndOut) {
  EXPECT_EQ(decoded({"A B \0\0", 6}, TextEncoding::Ascii), "A B");
  EXPECT_EQ(decoded({"A\0B\0", 4}, TextEncoding::Ascii), "A\\x00B");
  EXPECT_EQ(decoded({" \0 A", 4}, TextEncoding::Ascii), " \\x00 A");
  EXPECT_EQ(decodedUnits({u"A \0", 3}, false), "A");
  EXPECT_EQ(decoded({"\0 \0", 3}, TextEncoding::Utf8), "");
  EXPECT_EQ(decoded("", TextEncoding::Utf16), "");
  EXPECT_EQ(decoded("\xFE\xFF", TextEncoding::Utf16), "");
  EXPECT_EQ(decoded("A \xff", TextEncoding::Ascii), "A \\xff");
  EXPECT_EQ(decodedUnits({u'A', u' ', 0xD800}, true), "A \\ud800");
}

TEST(ByteText, EscapesWhatCommandsATerminal) {
  EXPECT_EQ(decoded("a\x1b[2J\n\x7f", TextEncoding::Ascii), "a\\x1b[2J\\x0a\\x7f");
  const std::string rightToLeft = {'\xe2', '\x80', '\xae'};
  EXPECT_EQ(decoded(rightToLeft, TextEncoding::Utf8), "\\xe2\\x80\\xae");
  EXPECT_EQ(decodedUnits(u"\u009b\u202e", false), "\\xc2\\x9b\\xe2\\x80\\xae");
}

TEST(ByteText, EscapesBytesThatAreNoCharacter) {
  EXPECT_EQ(decoded("A\xc3\xbc", TextEncoding::Ascii), "A\\xc3\\xbc");
  EXPECT_EQ(decoded("\xc3(\xff", TextEncoding::Utf8), "\\xc3(\\xff");
  EXPECT_EQ(decodedUnits({0xD800, u'A', 0xDC00, 0xDBFF}, true), "\\ud800A\\udc00\\udbff");
  EXPECT_EQ(decoded("AB\xff", TextEncoding::Utf16Le), "\xe4\x89\x81\\xff");
}

}  // namespace
