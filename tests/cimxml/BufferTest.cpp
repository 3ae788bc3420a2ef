#include <cstdint>
#include <gmock/gmock.h>
#include <limits>

#include "cimxml/Buffer.h"

namespace {

using cimxml::Buffer;

std::string escape(std::string_view text) {
  Buffer out;
  cimxml::appendEscaped(out, text);
  return out;
}

TEST(CimXmlBuffer, LeavesPlainTextAsItIs) {
  EXPECT_EQ(escape(""), "");
  EXPECT_EQ(escape("a b;/#%\x7F"), "a b;/#%\x7F");
  EXPECT_EQ(escape("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(CimXmlBuffer, EscapesWhatXmlGivesAMeaning) {
  EXPECT_EQ(escape("<a b='c' d=\"e&f\">"), "&lt;a b=&apos;c&apos; d=&quot;e&amp;f&quot;&gt;");
  EXPECT_EQ(escape("\ta\r\n"), "&#9;a&#13;&#10;");
}

TEST(CimXmlBuffer, EscapesAByteWhereverItStands) {
  constexpr std::size_t kLength = 20;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const std::string sign(1, static_cast<char>(byte));
    for (std::size_t at = 0; at < kLength; ++at) {
      const std::string before(at, 'a');
      const std::string after(kLength - 1 - at, '~');
      ASSERT_EQ(escape(before + sign + after), before + escape(sign) + after)
          << byte << " at " << at;
    }
  }
}

TEST(CimXmlBuffer, PutsTheReplacementCharacterForEachByteThatXmlForbids) {
  EXPECT_EQ(escape(std::string_view("a\0b\x1F", 4)),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xFF"), "\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xC3z"), "\xEF\xBF\xBDz");
  EXPECT_EQ(escape("z\xE2\x82"), "z\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xEF\xBF\xBF"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(CimXmlBuffer, TakesNumbersInFull) {
  Buffer out;
  cimxml::appendNumber(out, std::numeric_limits<std::int64_t>::min());
  out += ' ';
  cimxml::appendNumber(out, std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(out, "-9223372036854775808 18446744073709551615");
}

TEST(CimXmlBuffer, TakesAttributesAndEndTags) {
  Buffer out = "<A";
  cimxml::appendAttribute(out, "NAME", "a\"<b");
  out += '>';
  cimxml::appendEndTag(out, "A");
  EXPECT_EQ(out, "<A NAME=\"a&quot;&lt;b\"></A>");
}

}  // namespace
