// The words of a query. A lexer is used by one thread; what it hands out are plain values.
//
//   identifiers  ASCII letters, digits and underscores, no digit first; keywords are among them
//   texts        in single or double quotes; \\ \' \" \b \t \n \f \r and \uXXXX (hexadecimal) stand
//                for characters
//   numbers      12, 0x1F, 101b (binary), 1.5, 2e6; a sign is a symbol
//   symbols      as the table in the source has them

#ifndef ORVEX_QUERY_LEXER_H_
#define ORVEX_QUERY_LEXER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace query {

struct Token {
  enum class Kind { End, Identifier, Text, Whole, Real, Symbol };

  Kind kind = Kind::End;
  std::size_t offset = 0;    // of its first byte
  std::string_view written;  // as it stands in the query; empty at the end
  std::string text;          // of a text: what it means
  std::uint64_t whole = 0;
  double real = 0;
};

class Lexer {
 public:
  // The text is the caller's and outlives the lexer and its tokens.
  explicit Lexer(std::string_view text) : m_text(text) {}

  // Returns the next word, the end over and over behind the last. Throws QueryFault for what is no
  // word.
  [[nodiscard]] Token next();

 private:
  void skipBlanks();
  [[nodiscard]] Token readText();
  void readEscape(std::string& text);
  [[nodiscard]] std::uint32_t readCodeUnit();
  [[nodiscard]] Token readNumber();
  [[nodiscard]] Token readSymbol();
  [[nodiscard]] Token finish(Token::Kind kind, std::size_t start) const;

  const std::string_view m_text;
  std::size_t m_at = 0;
};

}  // namespace query

#endif  // ORVEX_QUERY_LEXER_H_
