#include "tests/support/Throws.h"

#include <ostream>

#include "tests/support/Regex.h"
#include "tests/support/SourcePlace.h"

namespace test {

void ThrownMatcher::DescribeTo(std::ostream* stream) const {
  *stream << "throws exactly a " << m_type.name() << " whose text ";
  m_text.DescribeTo(stream);
}

void ThrownMatcher::DescribeNegationTo(std::ostream* stream) const {
  *stream << "does not throw exactly a " << m_type.name() << " whose text ";
  m_text.DescribeTo(stream);
}

bool ThrownMatcher::isExpected(const std::exception* error,
                               testing::MatchResultListener* listener) const {
  if (error == nullptr) {
    *listener << "which throws nothing";
    return false;
  }
  *listener << "which throws a " << typeid(*error).name() << ", \"" << error->what() << '"';
  return typeid(*error) == m_type && m_text.Matches(error->what());
}

testing::Matcher<std::string> IsAssertion(const std::string& source, const std::string& condition) {
  const auto misplacement = [](const std::string& text) { return findMisplacement(text); };
  return testing::AllOf(testing::StartsWith(source + ":"),
                        test::ContainsRegex("^[^:]+:[0-9]+: Assertion failed: '"),
                        testing::EndsWith(": Assertion failed: '" + condition + "'"),
                        testing::ResultOf("the fault of its place", misplacement, ""));
}

}  // namespace test
