#include <gmock/gmock.h>

#include "Utils/Clock.h"
#include "Utils/TimeStamp.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Regex.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::MatchesRegex;
using testing::ElementsAre;

constexpr const char* kEnter = "utils::TimeStamp::Init";
constexpr const char* kLeave = "utils::TimeStamp::~TimeStamp";
const std::string kTime = "[0-2][0-9]:[0-5][0-9]:[0-6][0-9]";  // NOLINT(cert-err58-cpp)

TEST(TimeStamp, LogsThatABlockIsEnteredAndLeft) {
  const LogCapture log;
  { const utils::TimeStamp timeStamp("core::update"); }

  EXPECT_THAT(
      log.records(),
      ElementsAre(
          IsRecordOf("Debug", LogLevel::Debug, kEnter,
                     MatchesRegex("      ### " + kTime + " Entering 'core::update'")),
          IsRecordOf("Debug", LogLevel::Debug, kLeave,
                     MatchesRegex("### " + kTime + " Leaving  'core::update' after [0-9]+ms "))));
}

TEST(TimeStamp, LogsOnlyTheLeavingWhenToldSo) {
  const LogCapture log;
  {
    const utils::TimeStamp timeStamp("block", false);
    EXPECT_TRUE(log.records().empty());
  }

  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf("Debug", LogLevel::Debug, kLeave,
                             MatchesRegex("### " + kTime + " Leaving  'block' after [0-9]+ms "))));
}

TEST(TimeStamp, LogsNoTimeForABlockShorterThanAMillisecond) {
  // The machine may be slow once; a whole run of blocks that short is not.
  EXPECT_TRUE(test::waitUntil([] {
    const LogCapture log;
    { const utils::TimeStamp timeStamp("block", false); }
    return log.messages(kLeave).front().ends_with(" after 0ms ");
  }));
}

TEST(TimeStamp, LogsWholeMillisecondsOfALongerBlock) {
  const LogCapture log;
  {
    const utils::TimeStamp timeStamp("block", false);
    const std::uint64_t start = utils::currentMicroseconds();
    ASSERT_TRUE(test::waitUntil([&] { return utils::currentMicroseconds() >= start + 25'000; }));
  }

  const std::string message = log.messages(kLeave).front();
  const int milliseconds = std::stoi(message.substr(message.find("after ") + 6));
  EXPECT_GE(milliseconds, 25);
  EXPECT_LT(milliseconds, 25'000);
}

TEST(TimeStamp, TakesANameWithPerCentSignsAsItStands) {
  const LogCapture log;
  { const utils::TimeStamp timeStamp("100%s"); }

  EXPECT_THAT(log.messages(kEnter), ElementsAre(testing::EndsWith(" Entering '100%s'")));
}

}  // namespace
