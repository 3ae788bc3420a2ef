// What LIKE compares a text with. A pattern stands for the whole text, and its characters are those
// of UTF-8; a byte that belongs to none is one of its own.
//
//   WQL                                  DMTF:CQL
//   %      any text, also none           .       any character
//   _      any character                 x* x+ x?  x any number of times, once or more, at most
//   once [abc]  one of them                   [abc]   one of them [a-f]  or [a=f], one from a to f
//   [a-f]   one from a to f
//   [^a]   any other                     [^a]    any other
//                                        a|b     either; ( ) holds together
//                                        ^ $     the beginning and the end of the text
//                                        \x      x itself
//
// The work grows with the length of the pattern times that of the text, and no faster. Constant:
// any thread.

#ifndef ORVEX_QUERY_PATTERN_H_
#define ORVEX_QUERY_PATTERN_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace query {

class PatternFault final : public std::exception {
 public:
  explicit PatternFault(std::string text) : m_text(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

class Pattern {
 public:
  static constexpr std::size_t kMostCharacters = 256;

  // Throw PatternFault for a text that is no pattern, or too long for one.
  [[nodiscard]] static Pattern fromWql(std::string_view text);
  [[nodiscard]] static Pattern fromCql(std::string_view text);

  [[nodiscard]] bool matches(std::string_view text) const;

  // One step of the match. Targets of jumps are relative to the instruction.
  struct Instruction {
    enum class Kind { One, Any, Set, Fork, Jump, Begin, End, Match };

    Kind kind = Kind::Match;
    std::uint32_t character = 0;  // of One
    std::size_t set = 0;          // of Set
    std::ptrdiff_t first = 0;     // of Fork and Jump
    std::ptrdiff_t second = 0;    // of Fork
  };

  struct Range {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
  };
  struct Set {
    bool isNegated = false;
    std::vector<Range> ranges;
  };

 private:
  Pattern(std::vector<Instruction> program, std::vector<Set> sets)
      : m_program(std::move(program)), m_sets(std::move(sets)) {}

  friend class PatternReader;
  friend class PatternRun;

  std::vector<Instruction> m_program;
  std::vector<Set> m_sets;
};

}  // namespace query

#endif  // ORVEX_QUERY_PATTERN_H_
