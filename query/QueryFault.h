// A query that cannot be taken, with the place in its text.

#ifndef ORVEX_QUERY_QUERYFAULT_H_
#define ORVEX_QUERY_QUERYFAULT_H_

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace query {

// Where in a text something stands. Lines and columns count from 1, columns in characters.
struct Position {
  std::size_t line = 1;
  std::size_t column = 1;

  friend bool operator==(const Position&, const Position&) = default;
};

// Returns where the byte at `offset` stands, which may be the end of the text. A byte that belongs
// to no character counts as one.
[[nodiscard]] Position findPosition(std::string_view text, std::size_t offset);

// Returns a part of a query as a refusal shows it: fit for a terminal, and its beginning alone
// where it is long.
[[nodiscard]] std::string toShown(std::string_view part);

class QueryFault final : public std::exception {
 public:
  enum class Kind {
    Invalid,      // no query of its language, or one that means nothing
    Unsupported,  // a query that others may take: it needs a part of the language that is not here
    UnknownClass,
  };

  // `reason` says what was expected, what is there instead, and what to do.
  QueryFault(Kind kind, std::string_view queryText, std::size_t offset, const std::string& reason);

  [[nodiscard]] Kind kind() const { return m_kind; }
  [[nodiscard]] const Position& position() const { return m_position; }
  // "line 1, column 23: ..."
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  Kind m_kind;
  Position m_position;
  std::string m_text;
};

}  // namespace query

#endif  // ORVEX_QUERY_QUERYFAULT_H_
