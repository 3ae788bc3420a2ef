// The words of a query one after the other, as a parser looks at them, and how it refuses one. One
// thread.

#ifndef ORVEX_QUERY_QUERYWORDS_H_
#define ORVEX_QUERY_QUERYWORDS_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "query/Lexer.h"

namespace query {

inline constexpr std::size_t kMostQueryBytes = 16 * 1024;

class QueryWords {
 public:
  // Stands at the first word. The text is the caller's and outlives this. Throws QueryFault, as all
  // that goes on does, for what is no word, and for a text that is too long.
  explicit QueryWords(std::string_view text);

  // Returns where it stands.
  [[nodiscard]] const Token& token() const { return m_token; }
  void advance() { m_token = m_lexer.next(); }

  // Keywords are compared without regard to case.
  [[nodiscard]] bool isAtWord(std::string_view word) const;
  [[nodiscard]] bool isAtSymbol(std::string_view symbol) const;
  // A name that the query gives: no keyword.
  [[nodiscard]] bool isAtName() const;

  // Advance behind it and return true where it is there.
  bool takeWord(std::string_view word);
  bool takeSymbol(std::string_view symbol);
  // Throw QueryFault where it is not.
  void demandWord(std::string_view word);
  void demandSymbol(std::string_view symbol);
  [[nodiscard]] std::string takeName(std::string_view expected);

  // Throw QueryFault.
  [[noreturn]] void refuse(std::size_t offset, const std::string& reason) const;
  // "EXPECTED is expected, and here is ..."
  [[noreturn]] void refuseToken(std::string_view expected) const;
  [[noreturn]] void refuseUnsupported(const Token& at, const std::string& reason) const;
  // Only for a word that begins what the languages have and is not taken here.
  void refuseMissing(const Token& at) const;

 private:
  const std::string_view m_text;
  Lexer m_lexer;
  Token m_token;
};

}  // namespace query

#endif  // ORVEX_QUERY_QUERYWORDS_H_
