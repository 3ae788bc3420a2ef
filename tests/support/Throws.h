// Matchers for what a call throws.

#ifndef ORVEX_TESTS_SUPPORT_THROWS_H_
#define ORVEX_TESTS_SUPPORT_THROWS_H_

#include <exception>
#include <gmock/gmock.h>
#include <iosfwd>
#include <string>
#include <typeinfo>
#include <utility>

namespace test {

// What of ThrowsExactly is the same for every error and every call.
class ThrownMatcher {
 public:
  using is_gtest_matcher = void;

  void DescribeTo(std::ostream* stream) const;
  void DescribeNegationTo(std::ostream* stream) const;

 protected:
  ThrownMatcher(const std::type_info& type, testing::Matcher<std::string> text)
      : m_type(type), m_text(std::move(text)) {}

  // Null: nothing was thrown.
  bool isExpected(const std::exception* error, testing::MatchResultListener* listener) const;

 private:
  const std::type_info& m_type;
  testing::Matcher<std::string> m_text;
};

template <class Error>
class ThrowsExactlyMatcher : public ThrownMatcher {
 public:
  explicit ThrowsExactlyMatcher(testing::Matcher<std::string> text)
      : ThrownMatcher(typeid(Error), std::move(text)) {}

  template <class Call>
  bool MatchAndExplain(Call&& call, testing::MatchResultListener* listener) const {
    try {
      call();
    } catch (const std::exception& error) {
      return isExpected(&error, listener);
    }
    return isExpected(nullptr, listener);
  }
};

// Matches a call that throws exactly an Error (none derived from it) with the text, which is a
// string or a matcher. What is no std::exception passes through.
template <class Error>
ThrowsExactlyMatcher<Error> ThrowsExactly(const testing::Matcher<std::string>& text) {
  return ThrowsExactlyMatcher<Error>(text);
}

// Matches the text of an assertion of the source that has failed on the condition, at the line
// where that stands.
[[nodiscard]] testing::Matcher<std::string> IsAssertion(const std::string& source,
                                                        const std::string& condition);

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_THROWS_H_
