#include <gmock/gmock.h>
#include <optional>
#include <ostream>
#include <thread>
#include <vector>

#include "Utils/Log.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Programs.h"

namespace {

using test::LogCapture;
using test::LogLevel;
using test::LogSink;
using testing::ElementsAre;

constexpr utils::LogSource kLog{"Utils/Some"};

std::string probe(const std::optional<std::string>& level,
                  const std::vector<std::string>& arguments = {}) {
  const test::ProgramResult result = test::runProgram(
      test::programBeside("log_level_probe"), arguments, {{"ZOLAN_Quorvel_LOG_LEVEL", level}});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  return result.output;
}

constexpr const char* kAtLevel[] = {
    "debug is not logged\n",

    "event OrvexQuorvel: Probe:2:probe: error: e\n"
    "debug is not logged\n",

    "channel OrvexQuorvel: Probe:1:probe: debug: d\n"
    "event OrvexQuorvel: Probe:2:probe: error: e\n"
    "channel OrvexQuorvel: Probe:2:probe: error: e\n"
    "debug is logged\n",

    "channel OrvexQuorvel: Probe:1:probe: debug: d\n"
    "stderr OrvexQuorvel: Probe:1:probe: debug: d\n"
    "event OrvexQuorvel: Probe:2:probe: error: e\n"
    "channel OrvexQuorvel: Probe:2:probe: error: e\n"
    "stderr OrvexQuorvel: Probe:2:probe: error: e\n"
    "debug is logged\n",
};

struct LevelCase {
  std::optional<std::string> variable;
  int level;
};

void PrintTo(const LevelCase& level, std::ostream* stream) {
  *stream << (level.variable ? "'" + *level.variable + "'" : "unset");
}

class LogLevelOf : public testing::TestWithParam<LevelCase> {};

TEST_P(LogLevelOf, SaysWhereEntriesGo) {
  EXPECT_EQ(probe(GetParam().variable), kAtLevel[GetParam().level]);
}

INSTANTIATE_TEST_SUITE_P(TheVariable, LogLevelOf,
                         testing::Values(LevelCase{std::nullopt, 1}, LevelCase{"", 1},
                                         LevelCase{"0", 0}, LevelCase{"1", 1}, LevelCase{"2", 2},
                                         LevelCase{"3", 3}, LevelCase{"25", 2}, LevelCase{"3x", 3},
                                         LevelCase{"03", 0}, LevelCase{"9", 1}, LevelCase{"4", 1},
                                         LevelCase{"-1", 1}, LevelCase{" 3", 1},
                                         LevelCase{"debug", 1}));

TEST(LogLevel, OfZeroHasErrorsBuiltAllTheSame) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  EXPECT_EQ(probe("0", {"format"}), "debug is not built, error is built\n");
}

TEST(LogLevel, IsReadOnce) {
  EXPECT_EQ(probe("0", {"change"}), std::string(kAtLevel[0]) + kAtLevel[0]);
  EXPECT_EQ(probe(std::nullopt, {"change"}), std::string(kAtLevel[1]) + kAtLevel[1]);
}

TEST(LogLevel, MayBeReadFirstByManyThreads) {
  const std::string line = "event OrvexQuorvel: Probe:2:probe: error: e\n";
  std::string expected;
  for (int i = 0; i < 8; ++i) {
    expected += line;
  }

  EXPECT_EQ(probe("1", {"race"}), expected);
}

TEST(Log, BuildsALineFromSourceLineFunctionLabelAndMessage) {
  const LogCapture log;

  utils::logDebug(kLog, {"utils::Some::act", 12}, "%s is %d", "x", 3);
  utils::logError(kLog, {"utils::Some::act", 13}, "no %s", "x");

  EXPECT_THAT(log.lines(LogSink::DebugChannel),
              ElementsAre("OrvexQuorvel: Utils/Some:12:utils::Some::act: debug: x is 3\n",
                          "OrvexQuorvel: Utils/Some:13:utils::Some::act: error: no x\n"));
  EXPECT_THAT(log.lines(LogSink::EventLog),
              ElementsAre("OrvexQuorvel: Utils/Some:13:utils::Some::act: error: no x\n"));
  EXPECT_EQ(log.lines(LogSink::StandardError), log.lines(LogSink::DebugChannel));
}

TEST(Log, TakesTheLineOfTheCall) {
  const LogCapture log;

  utils::logDebug(kLog, "act", "text");
  const int line = __LINE__ - 1;

  ASSERT_EQ(log.records().size(), 1U);
  EXPECT_EQ(log.records().front().line, line);
}

TEST(Log, InterpretsPerCentSignsOnStandardErrorOnly) {
  const LogCapture log;

  utils::logError(kLog, {"act", 1}, "%s", "100%% %d %s %n %%% %");

  const std::string head = "OrvexQuorvel: Utils/Some:1:act: error: ";
  EXPECT_THAT(log.lines(LogSink::StandardError), ElementsAre(head + "100% %d %s %n %% %\n"));
  EXPECT_THAT(log.lines(LogSink::DebugChannel), ElementsAre(head + "100%% %d %s %n %%% %\n"));
  EXPECT_THAT(log.lines(LogSink::EventLog), ElementsAre(head + "100%% %d %s %n %%% %\n"));
}

TEST(Log, KeepsLongMessagesWhole) {
  const LogCapture log;
  const std::string text(10'000, 'x');

  utils::logDebug(kLog, "act", "%s", text.c_str());

  EXPECT_EQ(log.messages("act"), std::vector<std::string>{text});
}

TEST(Log, HandsTheSinksBackThatWereSetBefore) {
  const LogCapture outer;
  {
    const LogCapture inner;
    utils::logDebug(kLog, "act", "to the inner one");
    EXPECT_THAT(inner.messages("act"), ElementsAre("to the inner one"));
  }
  utils::logDebug(kLog, "act", "to the outer one");

  EXPECT_THAT(outer.messages("act"), ElementsAre("to the outer one"));
}

TEST(Log, KeepsEntriesOfManyThreadsWhole) {
  constexpr int kThreads = 8;
  constexpr int kEntries = 200;
  const LogCapture log;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([] {
      for (int entry = 0; entry < kEntries; ++entry) {
        utils::logDebug(kLog, {"act", 1}, "entry %d", entry);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(log.records().size(), static_cast<std::size_t>(kThreads * kEntries));
  EXPECT_THAT(log.records(),
              testing::Each(test::IsRecord(LogLevel::Debug, "act", testing::StartsWith("entry "))));
}

#ifndef QUORVEL_TEST_THREAD_SANITIZER
TEST(Log, HasAnotherEntryInThePlaceOfOneThatThereIsNoMemoryFor) {
  class LineSinks final : public utils::LogSinks {
   public:
    void writeEventLog(const std::string& line) noexcept override { isLost = line == kLost; }
    void writeDebugChannel(const std::string& /*line*/) noexcept override {}
    void writeStandardError(const std::string& /*text*/) noexcept override {}

    const std::string kLost = "OrvexQuorvel: an entry is lost, since there is no memory for it\n";
    bool isLost = false;
  } sinks;
  utils::LogSinks* const previous = utils::exchangeLogSinks(&sinks);
  {
    const test::FailingCall failing(test::SystemCall::Allocate, 1);
    utils::logError(kLog, "f", "%s", "a text that is longer than a string has room for by itself");
  }
  utils::exchangeLogSinks(previous);
  EXPECT_TRUE(sinks.isLost);
}
#endif

}  // namespace
