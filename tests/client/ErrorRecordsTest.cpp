#include <gmock/gmock.h>
#include <thread>

#include "Utils/Exception.h"
#include "client/ErrorRecords.h"

namespace {

using client::ErrorRecords;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr utils::LogSource kLog{"ErrorRecordsTest"};

// The sinks that the recorder found when it was installed.
class CountingSinks : public utils::LogSinks {
 public:
  void writeEventLog(const std::string&) noexcept override { ++events; }
  void writeDebugChannel(const std::string&) noexcept override { ++debugs; }
  void writeStandardError(const std::string&) noexcept override { ++consoles; }

  int events = 0;
  int debugs = 0;
  int consoles = 0;
};

// The recorder stays for the life of the process, and so do the sinks behind it. They come first,
// before any test installs the recorder, which passes on to those that it finds.
class Recording : public testing::Environment {
 public:
  void SetUp() override {
    utils::exchangeLogSinks(s_behind);
    static_cast<void>(ErrorRecords::instance());
  }

  static inline CountingSinks* const s_behind = new CountingSinks;
};

const auto* const kRecording = testing::AddGlobalTestEnvironment(new Recording);

class ErrorRecordsTest : public testing::Test {
 protected:
  CountingSinks& m_behind = *Recording::s_behind;
  ErrorRecords& m_records = ErrorRecords::instance();
};

TEST_F(ErrorRecordsTest, KeepsTheErrorsOfThisThreadWhileItRecords) {
  utils::logError(kLog, "before", "before");
  m_records.start();
  utils::logError(kLog, "f", "first: %d", 1);
  utils::logDebug(kLog, "f", "no error");
  std::thread([] { utils::logError(kLog, "f", "elsewhere"); }).join();
  utils::logError(kLog, "f", "second");
  EXPECT_THAT(m_records.take(), ElementsAre("first: 1", "second"));
  utils::logError(kLog, "f", "after");
  EXPECT_THAT(m_records.take(), IsEmpty());
}

TEST_F(ErrorRecordsTest, ForgetsWhatAnEarlierRecordingLeft) {
  m_records.start();
  utils::logError(kLog, "f", "old");
  m_records.start();
  EXPECT_THAT(m_records.take(), IsEmpty());
}

TEST_F(ErrorRecordsTest, PassesEveryRecordOn) {
  const int events = m_behind.events;
  const int debugs = m_behind.debugs;
  const int consoles = m_behind.consoles;
  m_records.start();
  utils::logError(kLog, "f", "error");
  utils::logDebug(kLog, "f", "debug");
  EXPECT_THAT(m_records.take(), ElementsAre("error"));
  EXPECT_EQ(m_behind.events, events + 1);
  EXPECT_EQ(m_behind.debugs, debugs + 2);
  EXPECT_EQ(m_behind.consoles, consoles + 2);
}

TEST(RecordMessage, IsWhatStandsBehindTheFrame) {
  EXPECT_EQ(client::messageOf("OrvexQuorvel: S:1:a::b: error: text: error: more\n"),
            "text: error: more");
  EXPECT_EQ(client::messageOf("something else"), "something else");
}

TEST(RefusalReason, IsTheLastCaughtException) {
  EXPECT_EQ(client::reasonOf({"Exception: 'old'", "EInvalidUri:URI",
                              "Exception: 'EInvalidUri:it's'", "Invalid URI for 'x'"}),
            "EInvalidUri:it's");
}

TEST(RefusalReason, IsTheLastMessageWhereNothingWasCaught) {
  EXPECT_EQ(client::reasonOf({"first", "last"}), "last");
  EXPECT_EQ(client::reasonOf({}), "");
}

TEST(WithoutType, TakesTheNameOfTheTypeAndBlanksOff) {
  EXPECT_EQ(client::withoutType("EInvalidUri:URI: x is invalid"), "URI: x is invalid");
  EXPECT_EQ(client::withoutType("Quorvel: EDowngradeDetected:Downgrade "), "Downgrade");
  EXPECT_EQ(client::withoutType("EUnspecifiedError:"), "");
}

TEST(WithoutType, LeavesOtherTextsAlone) {
  EXPECT_EQ(client::withoutType("Expected: more"), "Expected: more");
  EXPECT_EQ(client::withoutType("Error 3: more"), "Error 3: more");
  EXPECT_EQ(client::withoutType("E:x"), "E:x");
  EXPECT_EQ(client::withoutType(""), "");
}

}  // namespace
