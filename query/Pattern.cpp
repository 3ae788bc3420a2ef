#include "query/Pattern.h"

#include <algorithm>

#include "platform/Utf8.h"

namespace query {
namespace {

using Instruction = Pattern::Instruction;
using Program = std::vector<Instruction>;
using Characters = std::vector<std::uint32_t>;

// Bytes that belong to no character stand behind the last one.
constexpr std::uint32_t kStrayByte = platform::kLastCodePoint + 1;

Characters toCharacters(std::string_view text) {
  Characters characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    const auto character = platform::readCharacter(text);
    characters.push_back(character ? character->point
                                   : kStrayByte + static_cast<unsigned char>(text.front()));
    text.remove_prefix(character ? character->length : 1);
  }
  return characters;
}

void append(Program& program, const Program& more) {
  program.insert(program.end(), more.begin(), more.end());
}

Instruction one(std::uint32_t character) {
  return {Instruction::Kind::One, character};
}

Instruction plain(Instruction::Kind kind) {
  return {kind};
}

Instruction fork(std::ptrdiff_t first, std::ptrdiff_t second) {
  return {Instruction::Kind::Fork, 0, 0, first, second};
}

Instruction jump(std::ptrdiff_t target) {
  return {Instruction::Kind::Jump, 0, 0, target, 0};
}

std::ptrdiff_t lengthOf(const Program& program) {
  return static_cast<std::ptrdiff_t>(program.size());
}

Program repeat(const Program& piece, char how) {
  Program program;
  if (how == '+') {
    program = piece;
    program.push_back(fork(-lengthOf(piece), 1));
    return program;
  }
  const bool isOnce = how == '?';
  program.push_back(fork(1, lengthOf(piece) + (isOnce ? 1 : 2)));
  append(program, piece);
  if (!isOnce) {
    program.push_back(jump(-lengthOf(piece) - 1));
  }
  return program;
}

Program either(const Program& left, const Program& right) {
  Program program;
  program.push_back(fork(1, lengthOf(left) + 2));
  append(program, left);
  program.push_back(jump(lengthOf(right) + 1));
  append(program, right);
  return program;
}

}  // namespace

class PatternReader {
 public:
  explicit PatternReader(std::string_view text) : m_text(toCharacters(text)) {
    if (m_text.size() > Pattern::kMostCharacters) {
      throw PatternFault("a pattern has " + std::to_string(Pattern::kMostCharacters) +
                         " characters at the most, and this one " + std::to_string(m_text.size()));
    }
  }

  Pattern readWql() {
    Program program;
    while (!isAtEnd()) {
      const std::uint32_t character = take();
      if (character == '%') {
        append(program, repeat({plain(Instruction::Kind::Any)}, '*'));
      } else if (character == '_') {
        program.push_back(plain(Instruction::Kind::Any));
      } else if (character == '[') {
        program.push_back(readSet('=', false));
      } else {
        program.push_back(one(character));
      }
    }
    return finish(std::move(program));
  }

  Pattern readCql() {
    Program program = readChoice();
    if (!isAtEnd()) {
      refuse("')' closes nothing; write \\) for the character itself");
    }
    return finish(std::move(program));
  }

 private:
  [[nodiscard]] bool isAtEnd() const { return m_at == m_text.size(); }
  [[nodiscard]] bool isAt(char character) const {
    return !isAtEnd() && m_text[m_at] == static_cast<std::uint32_t>(character);
  }
  std::uint32_t take() { return m_text[m_at++]; }

  [[noreturn]] void refuse(const std::string& reason) const {
    throw PatternFault("character " + std::to_string(m_at + 1) + " of the pattern: " + reason);
  }

  Pattern finish(Program program) {
    program.push_back(plain(Instruction::Kind::Match));
    return {std::move(program), std::move(m_sets)};
  }

  // Bounded by the length of a pattern.
  Program readChoice() {
    Program program = readSequence();
    while (isAt('|')) {
      take();
      program = either(program, readSequence());
    }
    return program;
  }

  Program readSequence() {
    Program program;
    while (!isAtEnd() && !isAt('|') && !isAt(')')) {
      Program piece = readPiece();
      if (isAt('*') || isAt('+') || isAt('?')) {
        piece = repeat(piece, static_cast<char>(take()));
        if (isAt('*') || isAt('+') || isAt('?')) {
          refuse("nothing is repeated twice; use ( )");
        }
      }
      append(program, piece);
    }
    return program;
  }

  Program readPiece() {
    if (isAt('*') || isAt('+') || isAt('?')) {
      refuse("nothing stands before it that it could repeat; write \\ before the character itself");
    }
    if (isAt('{')) {
      refuse("counts in { } are not taken; write the piece as often, or \\{ for the character");
    }
    switch (const std::uint32_t character = take()) {
      case '.':
        return {plain(Instruction::Kind::Any)};
      case '^':
        return {plain(Instruction::Kind::Begin)};
      case '$':
        return {plain(Instruction::Kind::End)};
      case '[':
        return {readSet('-', true)};
      case '(':
        return readGroup();
      case '\\':
        return {one(takeEscaped())};
      default:
        return {one(character)};
    }
  }

  Program readGroup() {
    Program program = readChoice();
    if (!isAt(')')) {
      refuse("')' is missing");
    }
    take();
    return program;
  }

  std::uint32_t takeEscaped() {
    if (isAtEnd()) {
      refuse("a character is missing behind \\");
    }
    return take();
  }

  // Reads what follows "[". A range is written with '-', or with the other sign.
  Instruction readSet(char otherSign, bool hasEscapes) {
    Pattern::Set set;
    if (isAt('^')) {
      take();
      set.isNegated = true;
    }
    do {
      const std::uint32_t first = takeMember(hasEscapes);
      std::uint32_t last = first;
      const bool isRange =
          (isAt('-') || isAt(otherSign)) && m_at + 1 < m_text.size() && m_text[m_at + 1] != ']';
      if (isRange) {
        take();
        last = takeMember(hasEscapes);
        if (last < first) {
          refuse("a range goes from the lower character to the higher one");
        }
      }
      set.ranges.push_back({first, last});
    } while (!isAt(']'));
    take();
    m_sets.push_back(std::move(set));
    Instruction instruction = plain(Instruction::Kind::Set);
    instruction.set = m_sets.size() - 1;
    return instruction;
  }

  std::uint32_t takeMember(bool hasEscapes) {
    if (isAtEnd()) {
      refuse("']' is missing");
    }
    const std::uint32_t character = take();
    return hasEscapes && character == '\\' ? takeEscaped() : character;
  }

  const Characters m_text;
  std::size_t m_at = 0;
  std::vector<Pattern::Set> m_sets;
};

// Follows all ways through the program at the same time.
class PatternRun {
 public:
  PatternRun(const Pattern& pattern, std::string_view text)
      : m_pattern(pattern), m_text(toCharacters(text)), m_reached(pattern.m_program.size(), 0) {}

  bool run() {
    std::vector<std::size_t> places;
    std::vector<std::size_t> next;
    follow(0, 0, places);
    for (std::size_t at = 0; at < m_text.size() && !places.empty(); ++at) {
      next.clear();
      for (const std::size_t place : places) {
        if (takes(m_pattern.m_program[place], m_text[at])) {
          follow(place + 1, at + 1, next);
        }
      }
      places.swap(next);
    }
    return m_isMatch;
  }

 private:
  bool takes(const Instruction& instruction, std::uint32_t character) const {
    switch (instruction.kind) {
      case Instruction::Kind::Any:
        return true;
      case Instruction::Kind::One:
        return instruction.character == character;
      case Instruction::Kind::Set:
        return isIn(m_pattern.m_sets[instruction.set], character);
      default:
        return false;
    }
  }

  static bool isIn(const Pattern::Set& set, std::uint32_t character) {
    const bool isNamed =
        std::any_of(set.ranges.begin(), set.ranges.end(), [character](const Pattern::Range& range) {
          return range.first <= character && character <= range.last;
        });
    return isNamed != set.isNegated;
  }

  // Adds the places that are reached from this one without another character, each once.
  void follow(std::size_t place, std::size_t at, std::vector<std::size_t>& places) {
    m_pending.push_back(place);
    while (!m_pending.empty()) {
      const std::size_t current = m_pending.back();
      m_pending.pop_back();
      if (m_reached[current] == at + 1) {
        continue;
      }
      m_reached[current] = at + 1;
      const Instruction& instruction = m_pattern.m_program[current];
      switch (instruction.kind) {
        case Instruction::Kind::Fork:
          m_pending.push_back(target(current, instruction.second));
          m_pending.push_back(target(current, instruction.first));
          break;
        case Instruction::Kind::Jump:
          m_pending.push_back(target(current, instruction.first));
          break;
        case Instruction::Kind::Begin:
          if (at == 0) {
            m_pending.push_back(current + 1);
          }
          break;
        case Instruction::Kind::End:
          if (at == m_text.size()) {
            m_pending.push_back(current + 1);
          }
          break;
        case Instruction::Kind::Match:
          m_isMatch = m_isMatch || at == m_text.size();
          break;
        default:
          places.push_back(current);
      }
    }
  }

  static std::size_t target(std::size_t place, std::ptrdiff_t distance) {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(place) + distance);
  }

  const Pattern& m_pattern;
  const Characters m_text;
  std::vector<std::size_t> m_reached;  // by which character a place was last reached, from 1
  std::vector<std::size_t> m_pending;
  bool m_isMatch = false;
};

Pattern Pattern::fromWql(std::string_view text) {
  return PatternReader(text).readWql();
}

Pattern Pattern::fromCql(std::string_view text) {
  return PatternReader(text).readCql();
}

bool Pattern::matches(std::string_view text) const {
  return PatternRun(*this, text).run();
}

}  // namespace query
