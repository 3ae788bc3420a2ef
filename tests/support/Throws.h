// Matchers for what a call throws.

#ifndef ORVEX_TESTS_SUPPORT_THROWS_H_
#define ORVEX_TESTS_SUPPORT_THROWS_H_

#include <exception>
#include <gmock/gmock.h>
#include <string>
#include <typeindex>
#include <typeinfo>

#include "tests/support/Regex.h"

namespace test {

// Matches a call that throws exactly an Error (none derived from it) with the text, which is a
// string or a matcher.
template <class Error, class Text>
auto ThrowsExactly(const Text& text) {
  const auto typeOf = [](const Error& error) { return std::type_index(typeid(error)); };
  const auto textOf = [](const Error& error) { return std::string(error.what()); };
  return testing::Throws<Error>(
      testing::AllOf(testing::ResultOf("type", typeOf, testing::Eq(std::type_index(typeid(Error)))),
                     testing::ResultOf("text", textOf, testing::Matcher<std::string>(text))));
}

// Matches the text of an assertion of the source that has failed on the condition.
inline testing::Matcher<std::string> IsAssertion(const std::string& source,
                                                 const std::string& condition) {
  return testing::AllOf(testing::StartsWith(source + ":"),
                        test::ContainsRegex("^[^:]+:[0-9]+: Assertion failed: '"),
                        testing::EndsWith(": Assertion failed: '" + condition + "'"));
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_THROWS_H_
