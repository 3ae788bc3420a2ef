// Regular expressions as matchers: those of the standard library (ECMAScript), since GoogleTest's
// know less on some platforms.

#ifndef ORVEX_TESTS_SUPPORT_REGEX_H_
#define ORVEX_TESTS_SUPPORT_REGEX_H_

#include <gmock/gmock.h>
#include <regex>
#include <string>

namespace test {

// Returns an expression that a text itself fits and no other.
inline std::string quoteRegex(const std::string& text) {
  std::string expression;
  for (const char sign : text) {
    if (std::string("^$\\.*+?()[]{}|").find(sign) != std::string::npos) {
      expression += '\\';
    }
    expression += sign;
  }
  return expression;
}

// Match a text of which all, or a part, fits the expression.
MATCHER_P(MatchesRegex, expression, "") {
  static_cast<void>(result_listener);
  return std::regex_match(std::string(arg), std::regex(expression));
}
MATCHER_P(ContainsRegex, expression, "") {
  static_cast<void>(result_listener);
  return std::regex_search(std::string(arg), std::regex(expression));
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_REGEX_H_
