#include "query/Lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>

#include "Utils/Ascii.h"
#include "Utils/Format.h"
#include "Utils/Printable.h"
#include "platform/Utf8.h"
#include "query/QueryFault.h"

namespace query {
namespace {

// Longer ones in front of their beginnings.
constexpr std::string_view kSymbols[] = {"<>", "<=", ">=", "!=", "::", "..", "||", "=",
                                         "<",  ">",  "(",  ")",  ",",  ".",  "*",  "[",
                                         "]",  "+",  "-",  "/",  "#",  ";"};

constexpr bool isDigit(char sign) {
  return sign >= '0' && sign <= '9';
}

constexpr bool isLetter(char sign) {
  const char small = utils::toLowerAscii(sign);
  return (small >= 'a' && small <= 'z') || sign == '_';
}

constexpr bool isWordSign(char sign) {
  return isLetter(sign) || isDigit(sign);
}

struct Escape {
  char letter;
  char meaning;
};

constexpr Escape kEscapes[] = {{'\\', '\\'}, {'\'', '\''}, {'"', '"'},  {'b', '\b'},
                               {'t', '\t'},  {'n', '\n'},  {'f', '\f'}, {'r', '\r'}};

std::optional<std::uint64_t> readWhole(std::string_view digits, int base) {
  std::uint64_t value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<double> readReal(std::string_view digits) {
  double value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  return error == std::errc() && stop == end && std::isfinite(value) ? std::optional(value)
                                                                     : std::nullopt;
}

[[noreturn]] void refuse(std::string_view text, std::size_t offset, const std::string& reason) {
  throw QueryFault(QueryFault::Kind::Invalid, text, offset, reason);
}

constexpr std::uint32_t kFirstHighSurrogate = 0xD800;
constexpr std::uint32_t kFirstLowSurrogate = 0xDC00;
constexpr std::uint32_t kLastSurrogate = 0xDFFF;

// What is no character of UTF-8 may be one in the code page of the program.
std::string describeByte(char byte) {
  return utils::format("\\x%02x", static_cast<unsigned char>(byte));
}

}  // namespace

Token Lexer::next() {
  skipBlanks();
  if (m_at == m_text.size()) {
    return finish(Token::Kind::End, m_at);
  }
  const char first = m_text[m_at];
  if (isLetter(first)) {
    const std::size_t start = m_at;
    while (m_at < m_text.size() && isWordSign(m_text[m_at])) {
      ++m_at;
    }
    return finish(Token::Kind::Identifier, start);
  }
  if (first == '\'' || first == '"') {
    return readText();
  }
  return isDigit(first) ? readNumber() : readSymbol();
}

void Lexer::skipBlanks() {
  m_at = std::min(m_text.find_first_not_of(" \t\r\n", m_at), m_text.size());
}

Token Lexer::finish(Token::Kind kind, std::size_t start) const {
  Token token;
  token.kind = kind;
  token.offset = start;
  token.written = m_text.substr(start, m_at - start);
  return token;
}

// ---- texts

Token Lexer::readText() {
  const std::size_t start = m_at;
  const char quote = m_text[m_at++];
  std::string text;
  while (true) {
    if (m_at == m_text.size()) {
      refuse(m_text, start, std::string("the text that begins here lacks the closing ") + quote);
    }
    const char sign = m_text[m_at];
    if (sign == quote) {
      ++m_at;
      break;
    }
    if (sign == '\\') {
      readEscape(text);
      continue;
    }
    const auto character = platform::readCharacter(m_text.substr(m_at));
    if (!character) {
      refuse(m_text, m_at, "a byte that is no UTF-8: " + describeByte(m_text[m_at]));
    }
    if (character->point == 0) {
      refuse(m_text, m_at, "a NUL, which no text may hold");
    }
    text += m_text.substr(m_at, character->length);
    m_at += character->length;
  }
  Token token = finish(Token::Kind::Text, start);
  token.text = std::move(text);
  return token;
}

void Lexer::readEscape(std::string& text) {
  const std::size_t start = m_at++;
  const char letter = m_at < m_text.size() ? m_text[m_at] : '\0';
  const auto* known = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                   [letter](const Escape& one) { return one.letter == letter; });
  if (known != std::end(kEscapes)) {
    text += known->meaning;
    ++m_at;
    return;
  }
  if (letter != 'u' && letter != 'U') {
    refuse(m_text, start,
           R"(a backslash stands before \ ' " b t n f r or uXXXX; write \\ for one)");
  }
  std::uint32_t point = readCodeUnit();
  if (point >= kFirstHighSurrogate && point < kFirstLowSurrogate &&
      m_text.substr(m_at, 2) == "\\u") {
    ++m_at;
    const std::uint32_t low = readCodeUnit();
    if (low < kFirstLowSurrogate || low > kLastSurrogate) {
      refuse(m_text, start, "half of a character: two of \\uD800 to \\uDFFF make one");
    }
    point = 0x10000 + ((point - kFirstHighSurrogate) << 10) + (low - kFirstLowSurrogate);
  }
  if (point == 0) {
    refuse(m_text, start, "a NUL, which no text may hold");
  }
  if (point >= kFirstHighSurrogate && point <= kLastSurrogate) {
    refuse(m_text, start, "half of a character: two of \\uD800 to \\uDFFF make one");
  }
  platform::appendCharacter(text, point);
}

// Reads uXXXX.
std::uint32_t Lexer::readCodeUnit() {
  constexpr std::size_t kDigits = 4;
  const std::string_view digits = m_text.substr(std::min(m_at + 1, m_text.size()), kDigits);
  const std::optional<std::uint64_t> value = readWhole(digits, 16);
  if (digits.size() != kDigits || !value) {
    refuse(m_text, m_at - 1, "\\u stands before four hexadecimal digits");
  }
  m_at += 1 + kDigits;
  return static_cast<std::uint32_t>(*value);
}

// ---- numbers

Token Lexer::readNumber() {
  const std::size_t start = m_at;
  const auto skip = [this](auto isTaken) {
    while (m_at < m_text.size() && isTaken(m_text[m_at])) {
      ++m_at;
    }
  };
  skip(isWordSign);
  const bool isReal =
      m_text.substr(m_at, 1) == "." && m_at + 1 < m_text.size() && isDigit(m_text[m_at + 1]);
  if (isReal) {
    ++m_at;
    skip(isWordSign);
  }
  const auto written = [this, start] { return m_text.substr(start, m_at - start); };
  const bool isHexadecimal = written().starts_with("0x") || written().starts_with("0X");
  const char last = utils::toLowerAscii(written().back());
  // 1.5e-3: the sign belongs to the number.
  if (last == 'e' && !isHexadecimal && m_at + 1 < m_text.size() &&
      (m_text[m_at] == '-' || m_text[m_at] == '+') && isDigit(m_text[m_at + 1])) {
    ++m_at;
    skip(isWordSign);
  }
  const std::string_view all = written();
  const bool isBinary = !isHexadecimal && last == 'b' && !isReal;
  std::optional<std::uint64_t> whole;
  if (isHexadecimal) {
    whole = readWhole(all.substr(2), 16);
  } else if (isBinary) {
    whole = readWhole(all.substr(0, all.size() - 1), 2);
  } else {
    whole = readWhole(all, 10);
  }
  if (whole) {
    Token token = finish(Token::Kind::Whole, start);
    token.whole = *whole;
    return token;
  }
  const bool isPlain = std::all_of(all.begin(), all.end(), isDigit);
  const std::optional<double> real =
      isHexadecimal || isBinary || isPlain ? std::nullopt : readReal(all);
  if (!real) {
    refuse(m_text, start,
           "'" + toShown(all) +
               (isPlain ? "' is beyond the numbers of 64 bits"
                        : "' is no number: 12, 0x1F, 101b, 1.5 and 2e6 are some, within 64 bits"));
  }
  Token token = finish(Token::Kind::Real, start);
  token.real = *real;
  return token;
}

// ---- symbols

Token Lexer::readSymbol() {
  const std::string_view rest = m_text.substr(m_at);
  for (const std::string_view symbol : kSymbols) {
    if (rest.starts_with(symbol)) {
      const std::size_t start = m_at;
      m_at += symbol.size();
      return finish(Token::Kind::Symbol, start);
    }
  }
  const auto character = platform::readCharacter(rest);
  refuse(m_text, m_at,
         "'" +
             (character ? utils::toPrintable(rest.substr(0, character->length))
                        : describeByte(rest.front())) +
             "' has no place in a query outside of quotes");
}

}  // namespace query
