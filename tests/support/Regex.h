// Regular expressions as matchers: those of the standard library (ECMAScript), since GoogleTest's
// know less on some platforms. The library's templates are compiled in Regex.cpp alone.

#ifndef ORVEX_TESTS_SUPPORT_REGEX_H_
#define ORVEX_TESTS_SUPPORT_REGEX_H_

#include <gmock/gmock.h>
#include <iosfwd>
#include <string>
#include <utility>

namespace test {

// Returns an expression that a text itself fits and no other.
[[nodiscard]] std::string quoteRegex(const std::string& text);

// Matches whatever can be made a std::string.
class RegexMatcher {
 public:
  using is_gtest_matcher = void;

  enum class Extent { All, Part };

  RegexMatcher(std::string expression, Extent extent)
      : m_expression(std::move(expression)), m_extent(extent) {}

  template <class Text>
  bool MatchAndExplain(const Text& text, testing::MatchResultListener* /*listener*/) const {
    return fits(std::string(text));
  }
  void DescribeTo(std::ostream* stream) const;
  void DescribeNegationTo(std::ostream* stream) const;

 private:
  [[nodiscard]] bool fits(const std::string& text) const;

  std::string m_expression;
  Extent m_extent;
};

// Match a text of which all, or a part, fits the expression.
[[nodiscard]] inline RegexMatcher MatchesRegex(const std::string& expression) {
  return {expression, RegexMatcher::Extent::All};
}
[[nodiscard]] inline RegexMatcher ContainsRegex(const std::string& expression) {
  return {expression, RegexMatcher::Extent::Part};
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_REGEX_H_
