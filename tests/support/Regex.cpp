#include "tests/support/Regex.h"

#include <ostream>
#include <regex>

namespace test {

std::string quoteRegex(const std::string& text) {
  std::string expression;
  for (const char sign : text) {
    if (std::string("^$\\.*+?()[]{}|").find(sign) != std::string::npos) {
      expression += '\\';
    }
    expression += sign;
  }
  return expression;
}

void RegexMatcher::DescribeTo(std::ostream* stream) const {
  *stream << (m_extent == Extent::All ? "fits" : "has a part that fits") << " the expression \""
          << m_expression << '"';
}

void RegexMatcher::DescribeNegationTo(std::ostream* stream) const {
  *stream << (m_extent == Extent::All ? "does not fit" : "has no part that fits")
          << " the expression \"" << m_expression << '"';
}

bool RegexMatcher::fits(const std::string& text) const {
  const std::regex expression(m_expression);
  return m_extent == Extent::All ? std::regex_match(text, expression)
                                 : std::regex_search(text, expression);
}

}  // namespace test
