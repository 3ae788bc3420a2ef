#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "query/Lexer.h"
#include "tests/query/QueryModel.h"

namespace {

using query::Lexer;
using query::Token;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> wordsOf(std::string_view text) {
  Lexer lexer(text);
  std::vector<std::string> words;
  for (Token token = lexer.next(); token.kind != Token::Kind::End; token = lexer.next()) {
    words.emplace_back(token.written);
  }
  return words;
}

Token onlyToken(std::string_view text) {
  Lexer lexer(text);
  Token token = lexer.next();
  EXPECT_EQ(lexer.next().kind, Token::Kind::End) << text;
  return token;
}

std::string faultOf(std::string_view text) {
  return test::faultOf([text] { wordsOf(text); });
}

TEST(Lexer, PartsWordsWithOrWithoutBlanks) {
  EXPECT_THAT(wordsOf("a.b::c[*]<>12 AND\n\tNOT(x>=-1)"),
              ElementsAre("a", ".", "b", "::", "c", "[", "*", "]", "<>", "12", "AND", "NOT", "(",
                          "x", ">=", "-", "1", ")"));
  EXPECT_THAT(wordsOf("a!=b||c#'d'"), ElementsAre("a", "!=", "b", "||", "c", "#", "'d'"));
  EXPECT_THAT(wordsOf(" \t\r\n "), ElementsAre());
}

TEST(Lexer, TellsWhereAWordStands) {
  Lexer lexer("  x =");
  EXPECT_EQ(lexer.next().offset, 2U);
  EXPECT_EQ(lexer.next().offset, 4U);
  EXPECT_EQ(lexer.next().offset, 5U);
}

TEST(Lexer, ReadsTextsInEitherQuotes) {
  EXPECT_EQ(onlyToken("'it\"s'").text, "it\"s");
  EXPECT_EQ(onlyToken("\"it's\"").text, "it's");
  EXPECT_EQ(onlyToken("''").text, "");
  EXPECT_EQ(onlyToken("'\xC3\xA4'").text, "\xC3\xA4");
}

TEST(Lexer, ReadsEscapes) {
  EXPECT_EQ(onlyToken(R"('\\ \' \" \b\t\n\f\r')").text, "\\ ' \" \b\t\n\f\r");
  EXPECT_EQ(onlyToken(R"('\u00e4\u20AC')").text, "\xC3\xA4\xE2\x82\xAC");
  EXPECT_EQ(onlyToken(R"('\uD83D\uDE00')").text, "\xF0\x9F\x98\x80");
}

TEST(Lexer, RefusesWrongEscapes) {
  EXPECT_THAT(faultOf(R"(x = 'a\q')"), StartsWith("line 1, column 7: a backslash stands before"));
  EXPECT_THAT(faultOf(R"('\u12')"), HasSubstr("four hexadecimal digits"));
  EXPECT_THAT(faultOf(R"('\u12g4')"), HasSubstr("four hexadecimal digits"));
  EXPECT_THAT(faultOf(R"('\u0000')"), HasSubstr("a NUL"));
  for (const char* half : {R"('\uD83D')", R"('\uDE00')", R"('\uD83D\u0041')", R"('\uD83Dx')"}) {
    EXPECT_THAT(faultOf(half), HasSubstr("half of a character")) << half;
  }
  EXPECT_THAT(faultOf("'\\"), HasSubstr("a backslash"));
}

TEST(Lexer, RefusesTextsThatDoNotEnd) {
  EXPECT_THAT(faultOf("x = 'abc"),
              "line 1, column 5: the text that begins here lacks the closing '");
  EXPECT_THAT(faultOf("\""), HasSubstr("lacks the closing \""));
}

TEST(Lexer, RefusesBytesThatAreNoText) {
  EXPECT_THAT(faultOf("'a\xFF'"), "line 1, column 3: a byte that is no UTF-8: \\xff");
  EXPECT_THAT(faultOf(std::string_view("'a\0'", 4)),
              "line 1, column 3: a NUL, which no text may hold");
  EXPECT_THAT(faultOf(std::string_view("a \0", 3)), HasSubstr("column 3: '\\x00' has no place"));
  EXPECT_THAT(faultOf("a \xC3\xA4"), HasSubstr("'\xC3\xA4' has no place"));
  EXPECT_THAT(faultOf("a \xC3"), HasSubstr("'\\xc3' has no place"));
  EXPECT_THAT(faultOf("a $"), HasSubstr("'$' has no place"));
}

TEST(Lexer, ReadsWholeNumbers) {
  EXPECT_EQ(onlyToken("0").whole, 0U);
  EXPECT_EQ(onlyToken("007").whole, 7U);
  EXPECT_EQ(onlyToken("18446744073709551615").whole, 18446744073709551615U);
  EXPECT_EQ(onlyToken("0x1f").whole, 31U);
  EXPECT_EQ(onlyToken("0X1B").whole, 27U);
  EXPECT_EQ(onlyToken("101b").whole, 5U);
  EXPECT_EQ(onlyToken("1B").whole, 1U);
}

TEST(Lexer, ReadsRealNumbers) {
  EXPECT_EQ(onlyToken("1.5").real, 1.5);
  EXPECT_EQ(onlyToken("2e6").real, 2e6);
  EXPECT_EQ(onlyToken("1.5E-3").real, 1.5e-3);
  EXPECT_EQ(onlyToken("1e+2").real, 100);
  EXPECT_THAT(wordsOf("a[1..3]"), ElementsAre("a", "[", "1", "..", "3", "]"));
}

TEST(Lexer, RefusesWhatIsNoNumber) {
  for (const char* wrong :
       {"12abc", "0x", "0xg", "12b", "b1b1b 1z", "1.5b", "1e", "1.2.3x", "0x1.8", "1e999"}) {
    EXPECT_THAT(faultOf(wrong), HasSubstr("is no number")) << wrong;
  }
  EXPECT_THAT(faultOf("x = 18446744073709551616"),
              "line 1, column 5: '18446744073709551616' is beyond the numbers of 64 bits");
}

}  // namespace
