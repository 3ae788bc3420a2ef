#include <gmock/gmock.h>
#include <limits>
#include <ostream>
#include <random>

#include "Utils/Conversions.h"
#include "Utils/Format.h"
#include "tests/support/LogCapture.h"

namespace {

using test::HasRecord;
using test::LogLevel;
using testing::ElementsAre;

// Texts made of the characters that mean something to the conversions, the same in every run.
std::vector<std::string> nastyTexts() {
  constexpr std::string_view kCharacters = "\"\\ab,=.: \t%\n";
  std::mt19937 random(20240229);  // NOLINT(cert-msc51-cpp): the texts are to be the same
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < 3000; ++i) {
    std::string text;
    for (std::size_t length = random() % 12; length > 0; --length) {
      text.push_back(kCharacters[random() % kCharacters.size()]);
    }
    texts.push_back(text);
  }
  return texts;
}

TEST(Trim, TakesBlanksAndTabsOffBothEnds) {
  EXPECT_EQ(utils::trim(" \t a b\t "), "a b");
  EXPECT_EQ(utils::trim("plain"), "plain");
}

TEST(Trim, LeavesNothingOfBlanks) {
  EXPECT_EQ(utils::trim(" \t \t"), "");
  EXPECT_EQ(utils::trim(""), "");
}

TEST(Trim, LeavesLineEndsAlone) {
  EXPECT_EQ(utils::trim("\n a \r\n"), "\n a \r\n");
}

TEST(Quote, PutsABackslashBeforeEachDoubleQuote) {
  EXPECT_EQ(utils::quote(R"(a"b)"), R"("a\"b")");
  EXPECT_EQ(utils::quote(""), R"("")");
  EXPECT_EQ(utils::quote(R"("")"), R"("\"\"")");
}

TEST(Quote, LeavesBackslashesSingle) {
  EXPECT_EQ(utils::quote(R"(C:\fw\)"), R"("C:\fw\")");
}

TEST(Unquote, UndoesQuote) {
  EXPECT_EQ(utils::unquote(R"("a\"b")"), R"(a"b)");
  EXPECT_EQ(utils::unquote(R"("")"), "");
}

TEST(Unquote, ReturnsTextsThatAreNotInQuotes) {
  for (const char* text : {"", "\"", "a", "\"a", "a\"", R"(a\"b)", " \"a\""}) {
    EXPECT_EQ(utils::unquote(text), text);
  }
}

TEST(Unquote, LooksForTheNextPairBehindTheQuoteThatItKept) {
  EXPECT_EQ(utils::unquote(R"("\\"")"), R"(\")");
  EXPECT_EQ(utils::unquote(R"("\\\"")"), R"(\\")");
  EXPECT_EQ(utils::unquote(R"("\"\"")"), R"("")");
}

TEST(Unquote, KeepsALastBackslash) {
  EXPECT_EQ(utils::unquote(R"("C:\")"), R"(C:\)");
}

// A client chooses how long a text is: the work may grow with its length alone.
TEST(Unquote, TakesALongTextOfEscapedQuotes) {
  const std::string text(512U * 1024U, '"');
  EXPECT_TRUE(utils::unquote(utils::quote(text)) == text);
}

TEST(Unquote, GivesEveryQuotedTextBack) {
  for (const std::string& text : nastyTexts()) {
    EXPECT_EQ(utils::unquote(utils::quote(text)), text);
  }
}

TEST(Split, KeepsEmptyPiecesAtSeparators) {
  EXPECT_THAT(utils::split("a,b,", ',', '"'), ElementsAre("a", "b", ""));
  EXPECT_THAT(utils::split(",a,,b", ',', '"'), ElementsAre("", "a", "", "b"));
  EXPECT_THAT(utils::split(",", ',', '"'), ElementsAre("", ""));
}

TEST(Split, GivesNoPieceForAnEmptyText) {
  EXPECT_TRUE(utils::split("", ',', '"').empty());
  EXPECT_TRUE(utils::split("", '+', utils::kNoQuote).empty());
}

TEST(Split, GivesOnePieceWithoutSeparators) {
  EXPECT_THAT(utils::split("abc", ',', '"'), ElementsAre("abc"));
}

TEST(Split, DoesNotSplitInsideQuotesAndKeepsThem) {
  EXPECT_THAT(utils::split(R"(x="a,b")", ',', '"'), ElementsAre(R"(x="a,b")"));
  EXPECT_THAT(utils::split(R"("a,b",c,"d")", ',', '"'), ElementsAre(R"("a,b")", "c", R"("d")"));
}

TEST(Split, StaysQuotedBehindAnEscapedQuote) {
  EXPECT_THAT(utils::split(R"("a\",b",c)", ',', '"'), ElementsAre(R"("a\",b")", "c"));
}

TEST(Split, TakesABackslashBeforeAnOpeningQuoteForAnyCharacter) {
  EXPECT_THAT(utils::split(R"(\"a,b",c)", ',', '"'), ElementsAre(R"(\"a,b")", "c"));
}

TEST(Split, TakesAQuoteThatIsNeverClosedToTheEnd) {
  EXPECT_THAT(utils::split(R"(a,"b,c)", ',', '"'), ElementsAre("a", R"("b,c)"));
}

TEST(Split, QuotesNothingWithTheNulCharacter) {
  EXPECT_THAT(utils::split("IMG_PXE+\"IMG+UEFI\"", '+', utils::kNoQuote),
              ElementsAre("IMG_PXE", "\"IMG", "UEFI\""));
  EXPECT_THAT(utils::split(std::string("a\0b+c", 5), '+', utils::kNoQuote),
              ElementsAre(std::string("a\0b", 3), "c"));
}

TEST(Split, LosesNothingButTheSeparators) {
  for (const std::string& text : nastyTexts()) {
    for (const char separator : {':', '.', ',', '='}) {
      std::string joined;
      for (const std::string& piece : utils::split(text, separator, '"')) {
        joined += piece + separator;
      }
      EXPECT_EQ(joined, text.empty() ? "" : text + separator);
    }
  }
}

TEST(Split, NeverSplitsAQuotedTextThatDoesNotEndInABackslash) {
  for (const std::string& text : nastyTexts()) {
    if (!text.ends_with('\\')) {
      const std::string quoted = utils::quote(text);
      EXPECT_THAT(utils::split(quoted + "," + quoted, ',', '"'), ElementsAre(quoted, quoted));
    }
  }
}

struct NumberCase {
  const char* text;
  std::uint32_t value;
  const char* left;  // what the caller's text is afterwards
};

void PrintTo(const NumberCase& number, std::ostream* stream) {
  *stream << '"' << number.text << '"';
}

class ToUintOfANumber : public testing::TestWithParam<NumberCase> {};

TEST_P(ToUintOfANumber, ConvertsItAndTidiesTheText) {
  std::string text = GetParam().text;
  std::uint32_t value = 99;

  EXPECT_TRUE(utils::toUint(text, value));
  EXPECT_EQ(value, GetParam().value);
  EXPECT_EQ(text, GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(Numbers, ToUintOfANumber,
                         testing::Values(NumberCase{"  42\t", 42, "42"}, NumberCase{"0", 0, "0"},
                                         NumberCase{"2147483647", 2147483647, "2147483647"},
                                         NumberCase{"0x00ff", 255, "0X00FF"},
                                         NumberCase{"0XaB", 171, "0XAB"},
                                         NumberCase{"0x0", 0, "0X0"},
                                         NumberCase{"0x000000000000001", 1, "0X000000000000001"},
                                         NumberCase{" 0xFFFFFFFF", 4294967295U, "0XFFFFFFFF"},
                                         NumberCase{"0x80000000", 2147483648U, "0X80000000"}));

class ToUintOfNoNumber : public testing::TestWithParam<const char*> {};

TEST_P(ToUintOfNoNumber, RefusesItAndLeavesTheValue) {
  std::string text = GetParam();
  std::uint32_t value = 99;

  EXPECT_FALSE(utils::toUint(text, value));
  EXPECT_EQ(value, 99U);
}

INSTANTIATE_TEST_SUITE_P(NoNumbers, ToUintOfNoNumber,
                         testing::Values("", " \t ", "042", "00", "+42", "-42", "-0", "42abc",
                                         "42 1", "4.2", "1e3", "2147483648", "4294967295",
                                         "4294967296", "99999999999999999999", "abc", "ff", "0x",
                                         "0X", "0xg", "0x1g", "0x 1", "0x-1", "-0x1", "+0x1",
                                         "0x100000000", "x1", "1,000", "\n42"));

TEST(ToUint, GivesEveryNumberBackThatItCanWrite) {
  constexpr std::uint32_t kLargestDecimal = std::numeric_limits<std::int32_t>::max();
  std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the numbers are to be the same
  for (int i = 0; i < 2000; ++i) {
    const auto number = static_cast<std::uint32_t>(random() >> (random() % 32));
    std::string hexadecimal = utils::format("0x%x", number);
    std::string decimal = utils::format("%u", number);
    std::uint32_t value = 0;

    EXPECT_TRUE(utils::toUint(hexadecimal, value)) << number;
    EXPECT_EQ(value, number);
    EXPECT_EQ(utils::toUint(decimal, value), number <= kLargestDecimal) << number;
  }
}

TEST(ToUint, LogsThatATextIsHexadecimal) {
  const test::LogCapture log;
  std::string text = " 0x1f ";
  std::uint32_t value = 0;

  EXPECT_TRUE(utils::toUint(text, value));
  EXPECT_THAT(log.records(),
              ElementsAre(test::IsRecord(LogLevel::Debug, "utils::toUint", "HEX: 0x1f")));
}

TEST(ToUint, LogsWhatDiffersFromTheTextWrittenBack) {
  const test::LogCapture log;
  std::string text = "42abc";
  std::uint32_t value = 0;

  EXPECT_FALSE(utils::toUint(text, value));
  EXPECT_EQ(text, "42ABC");
  EXPECT_THAT(log.records(), HasRecord(LogLevel::Debug, "utils::toUint", "CONV: 42 <> 42ABC"));
}

TEST(ToUint, LogsTheNegativeNumberThatALargeDecimalReadsBackAs) {
  const test::LogCapture log;
  std::string text = "2147483648";
  std::uint32_t value = 0;

  EXPECT_FALSE(utils::toUint(text, value));
  EXPECT_THAT(log.records(),
              HasRecord(LogLevel::Debug, "utils::toUint", "CONV: -2147483648 <> 2147483648"));
}

TEST(ToUint, LogsNothingForATextThatIsNoNumberAtAll) {
  const test::LogCapture log;
  std::string text = "\tblue ";
  std::uint32_t value = 0;

  EXPECT_FALSE(utils::toUint(text, value));
  EXPECT_EQ(text, "blue");
  EXPECT_TRUE(log.records().empty());
}

TEST(ToUpper, ChangesAsciiLettersOnly) {
  EXPECT_EQ(utils::toUpper("azAZ09_-\xc3\xa4"), "AZAZ09_-\xc3\xa4");
}

}  // namespace
