#include "midapi/VersionText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>

#include "Utils/Ascii.h"

namespace ma {
namespace {

// In the order of their age; words that announce come first.
enum class Rank { Announcement, Zero, Word, Number };

constexpr std::array<std::string_view, 8> kAnnouncements = {"alpha",   "beta", "dev",      "pre",
                                                            "preview", "rc",   "snapshot", "test"};

constexpr std::size_t kMostHexDigits = 16;
constexpr std::size_t kMostDecimalDigits = 20;  // of what those can hold

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isHexDigit(char character) {
  const char lower = utils::toLowerAscii(character);
  return isDigit(character) || (lower >= 'a' && lower <= 'f');
}

bool isLetter(char character) {
  const char lower = utils::toLowerAscii(character);
  return (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(character) >= 0x80;
}

template <class Predicate>
std::size_t lengthOf(std::string_view text, Predicate isPart) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPart) -
                                  text.begin());
}

std::string_view withoutZeros(std::string_view digits) {
  digits.remove_prefix(lengthOf(digits, [](char digit) { return digit == '0'; }));
  return digits;
}

// A number or a word; number 0 where a version has no more.
class Part {
 public:
  Part() = default;

  static Part ofWord(std::string_view word) {
    const bool announces = std::any_of(
        kAnnouncements.begin(), kAnnouncements.end(),
        [word](std::string_view known) { return utils::isSameIgnoringCase(known, word); });
    Part part;
    part.m_rank = announces ? Rank::Announcement : Rank::Word;
    part.m_text = word;
    return part;
  }

  static Part ofNumber(std::string_view digits) {
    Part part;
    part.m_text = withoutZeros(digits);
    part.m_rank = part.m_text.empty() ? Rank::Zero : Rank::Number;
    return part;
  }

  // At most kMostHexDigits, zeros in front aside.
  static Part ofHexNumber(std::string_view digits) {
    std::uint64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    Part part;
    char* const begin = part.m_decimal.data();
    const auto end = std::to_chars(begin, begin + part.m_decimal.size(), value).ptr;
    part.m_decimalSize = static_cast<std::size_t>(end - begin);
    part.m_rank = value == 0 ? Rank::Zero : Rank::Number;
    return part;
  }

  friend std::weak_ordering operator<=>(const Part& one, const Part& other) {
    if (one.m_rank != other.m_rank) {
      return one.m_rank <=> other.m_rank;
    }
    if (one.m_rank == Rank::Zero) {
      return std::weak_ordering::equivalent;
    }
    const std::string_view left = one.text();
    const std::string_view right = other.text();
    if (one.m_rank == Rank::Number && left.size() != right.size()) {
      return left.size() <=> right.size();
    }
    return std::lexicographical_compare_three_way(
        left.begin(), left.end(), right.begin(), right.end(), [](char mine, char theirs) {
          return static_cast<unsigned char>(utils::toLowerAscii(mine)) <=>
                 static_cast<unsigned char>(utils::toLowerAscii(theirs));
        });
  }

 private:
  [[nodiscard]] std::string_view text() const {
    return m_decimalSize == 0 ? m_text : std::string_view(m_decimal.data(), m_decimalSize);
  }

  Rank m_rank = Rank::Zero;
  std::string_view m_text;  // a word, or decimal digits without zeros in front
  std::array<char, kMostDecimalDigits> m_decimal{};
  std::size_t m_decimalSize = 0;
};

class Parts {
 public:
  explicit Parts(std::string_view version) : m_rest(version) {
    if (m_rest.size() >= 2 && utils::toLowerAscii(m_rest[0]) == 'v' && isDigit(m_rest[1])) {
      m_rest.remove_prefix(1);
    }
    skipSeparators();
  }

  [[nodiscard]] bool hasMore() const { return !m_rest.empty(); }

  Part next() {
    const Part part = readPart();
    skipSeparators();
    return part;
  }

 private:
  Part readPart() {
    if (m_rest.empty()) {
      return {};
    }
    if (isLetter(m_rest.front())) {
      return Part::ofWord(take(lengthOf(m_rest, isLetter)));
    }
    if (m_rest.starts_with("0x") || m_rest.starts_with("0X")) {
      const std::string_view behind = m_rest.substr(2);
      const std::string_view digits = behind.substr(0, lengthOf(behind, isHexDigit));
      if (!digits.empty() && withoutZeros(digits).size() <= kMostHexDigits) {
        take(2 + digits.size());
        return Part::ofHexNumber(digits);
      }
    }
    return Part::ofNumber(take(lengthOf(m_rest, isDigit)));
  }

  std::string_view take(std::size_t count) {
    const std::string_view taken = m_rest.substr(0, count);
    m_rest.remove_prefix(count);
    return taken;
  }

  void skipSeparators() {
    take(lengthOf(m_rest, [](char sign) { return !isDigit(sign) && !isLetter(sign); }));
  }

  std::string_view m_rest;
};

}  // namespace

std::weak_ordering compareVersions(std::string_view one, std::string_view other) noexcept {
  Parts left(one);
  Parts right(other);
  while (left.hasMore() || right.hasMore()) {
    const std::weak_ordering order = left.next() <=> right.next();
    if (order != std::weak_ordering::equivalent) {
      return order;
    }
  }
  return std::weak_ordering::equivalent;
}

}  // namespace ma
