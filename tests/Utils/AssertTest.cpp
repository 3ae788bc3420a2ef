#include <gmock/gmock.h>
#include <string>

#include "Utils/Assert.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using test::LogLevel;
using test::ThrowsExactly;

constexpr utils::LogSource kLog{"tests/Utils/AssertTest"};

void require(bool condition) {
  ORVEX_ASSERT(kLog, condition);
}

TEST(Assert, PassesWhatHolds) {
  EXPECT_NO_THROW(require(true));
}

TEST(Assert, ThrowsSourceLineAndTextOfTheConditionWithoutPrefix) {
  const int* listener = nullptr;
  const int line = __LINE__ + 1;
  const auto check = [&] { ORVEX_ASSERT(kLog, listener != NULL); };

  EXPECT_THAT(check,
              ThrowsExactly<utils::Exception>("tests/Utils/AssertTest:" + std::to_string(line) +
                                              ": Assertion failed: 'listener != NULL'"));
}

TEST(Assert, LogsWhatItThrowsAtErrorLevel) {
  const test::LogCapture log;

  EXPECT_THROW(require(false), utils::Exception);

  EXPECT_THAT(log.records(), testing::ElementsAre(test::IsRecordOf(
                                 "Exception", LogLevel::Error, "utils::Exception::Exception",
                                 test::IsAssertion("tests/Utils/AssertTest", "condition"))));
}

TEST(Assert, IsOneStatement) {
  bool isElse = false;
  if (kLog.name == nullptr)
    ORVEX_ASSERT(kLog, kLog.name != nullptr);
  else
    isElse = true;

  EXPECT_TRUE(isElse);
}

void requireRemainder(int number) {
  ORVEX_ASSERT(kLog, number % 7 != 0);
}

TEST(Assert, TakesAPercentSignInTheConditionAsItStands) {
  EXPECT_THAT([] { requireRemainder(7); }, ThrowsExactly<utils::Exception>(test::IsAssertion(
                                               "tests/Utils/AssertTest", "number % 7 != 0")));
}

}  // namespace
