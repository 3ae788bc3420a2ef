#include "query/QueryWords.h"

#include <algorithm>
#include <iterator>

#include "Utils/Ascii.h"
#include "query/QueryFault.h"

namespace query {
namespace {

constexpr std::string_view kKeywords[] = {"SELECT", "FROM", "WHERE", "AND", "OR", "NOT",  "ISA",
                                          "LIKE",   "IS",   "NULL",  "ANY", "AS", "EVERY"};

// A word that begins what is not taken, and what to do instead.
struct Missing {
  std::string_view word;
  const char* reason;
};

constexpr Missing kMissing[] = {
    {"DISTINCT", "DISTINCT is not taken: every instance comes once"},
    {"FIRST", "FIRST is not taken: MaxObjectCount of a pulled enumeration bounds what comes"},
    {"ORDER", "ORDER BY is not taken: instances come as they are served"},
    {"GROUP", "GROUP BY is not taken"},
    {"HAVING", "HAVING is not taken"},
    {"WITHIN", "WITHIN is not taken: changes are told when they happen"},
    {"JOIN", "joins are not taken: a query has one class"},
    {"EXISTS", "EXISTS is not taken: a query has no other one in it"},
    {"BETWEEN", "BETWEEN is not taken; write >= and <="},
    {"IN", "IN is not taken; write the comparisons with OR, of an array ANY"},
    {"SATISFIES", "SATISFIES is not taken"},
};

bool isWord(const Token& token, std::string_view word) {
  return token.kind == Token::Kind::Identifier && utils::isSameIgnoringCase(token.written, word);
}

std::string describe(const Token& token) {
  return token.kind == Token::Kind::End ? "the query ends here"
                                        : "here is " + toShown(token.written);
}

}  // namespace

QueryWords::QueryWords(std::string_view text) : m_text(text), m_lexer(text) {
  if (text.size() > kMostQueryBytes) {
    refuse(kMostQueryBytes, "a query has " + std::to_string(kMostQueryBytes) +
                                " bytes at the most, and this one " + std::to_string(text.size()));
  }
  advance();
}

bool QueryWords::isAtWord(std::string_view word) const {
  return isWord(m_token, word);
}

bool QueryWords::isAtSymbol(std::string_view symbol) const {
  return m_token.kind == Token::Kind::Symbol && m_token.written == symbol;
}

bool QueryWords::isAtName() const {
  return m_token.kind == Token::Kind::Identifier &&
         std::none_of(std::begin(kKeywords), std::end(kKeywords),
                      [this](std::string_view word) { return isAtWord(word); });
}

bool QueryWords::takeWord(std::string_view word) {
  const bool isThere = isAtWord(word);
  if (isThere) {
    advance();
  }
  return isThere;
}

bool QueryWords::takeSymbol(std::string_view symbol) {
  const bool isThere = isAtSymbol(symbol);
  if (isThere) {
    advance();
  }
  return isThere;
}

void QueryWords::demandWord(std::string_view word) {
  if (!takeWord(word)) {
    refuseToken(word);
  }
}

void QueryWords::demandSymbol(std::string_view symbol) {
  if (!takeSymbol(symbol)) {
    refuseToken("'" + std::string(symbol) + "'");
  }
}

std::string QueryWords::takeName(std::string_view expected) {
  if (!isAtName()) {
    refuseToken(expected);
  }
  std::string name(m_token.written);
  advance();
  return name;
}

void QueryWords::refuse(std::size_t offset, const std::string& reason) const {
  throw QueryFault(QueryFault::Kind::Invalid, m_text, offset, reason);
}

void QueryWords::refuseToken(std::string_view expected) const {
  refuse(m_token.offset, std::string(expected) + " is expected, and " + describe(m_token));
}

void QueryWords::refuseUnsupported(const Token& at, const std::string& reason) const {
  throw QueryFault(QueryFault::Kind::Unsupported, m_text, at.offset, reason);
}

void QueryWords::refuseMissing(const Token& at) const {
  for (const Missing& missing : kMissing) {
    if (isWord(at, missing.word)) {
      refuseUnsupported(at, missing.reason);
    }
  }
}

}  // namespace query
