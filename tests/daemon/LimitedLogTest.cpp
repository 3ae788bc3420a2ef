#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Utils/Log.h"
#include "daemon/LimitedLog.h"
#include "tests/support/LogCapture.h"

namespace {

using test::LogSink;
using testing::EndsWith;
using testing::SizeIs;

constexpr utils::LogSource kLog{"Test"};
constexpr int kMany = 6000;

class LimitedLog : public testing::Test {
 protected:
  [[nodiscard]] std::vector<std::string> errors() const {
    return m_capture.lines(LogSink::EventLog);
  }
  static void logMany(const std::string& text) {
    for (int i = 0; i < kMany; ++i) {
      utils::logError(kLog, {"flood::under", 7}, "%s %d", text.c_str(), i);
    }
  }

  quorveld::RecordLimit<std::string>::Clock::time_point m_now{std::chrono::hours(1)};
  test::LogCapture m_capture;
  quorveld::LimitedLog m_log{[this] { return m_now; }};
};

TEST_F(LimitedLog, WritesTheFirstErrorsOfAKindAndThenTheirCount) {
  logMany("refused: no");
  EXPECT_THAT(errors(), SizeIs(quorveld::LimitedLog::kMost));
  m_log.writeCounts();
  EXPECT_THAT(errors(), SizeIs(quorveld::LimitedLog::kMost));
  m_now += quorveld::RecordLimit<std::string>::kPeriod;
  m_log.writeCounts();
  EXPECT_THAT(errors(), SizeIs(quorveld::LimitedLog::kMost + 1));
  EXPECT_EQ(errors().back(),
            "OrvexQuorvel: Test:7:flood::under: error: ... and 5950 more of these in 5 s\n");
}

TEST_F(LimitedLog, KeepsKindsApart) {
  logMany("refused");
  utils::logError(kLog, {"another", 8}, "alone");
  EXPECT_THAT(errors().back(), EndsWith("error: alone\n"));
}

TEST_F(LimitedLog, LetsDebugRecordsPass) {
  logMany("refused");
  EXPECT_THAT(m_capture.lines(LogSink::DebugChannel), SizeIs(kMany));
}

TEST(LimitedLogOfAProcess, WritesTheCountsAtItsEndAndGivesThePlaceBack) {
  const test::LogCapture capture;
  {
    quorveld::LimitedLog log;
    for (unsigned i = 0; i < quorveld::LimitedLog::kMost + 2; ++i) {
      utils::logError(kLog, {"f", 7}, "x");
    }
    log.writeAllCounts();
  }
  EXPECT_THAT(capture.lines(LogSink::EventLog).back(),
              EndsWith("... and 2 more of these in 5 s\n"));
  utils::logError(kLog, {"f", 7}, "behind");
  EXPECT_THAT(capture.lines(LogSink::EventLog).back(), EndsWith("behind\n"));
}

}  // namespace
