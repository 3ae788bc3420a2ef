#include <atomic>
#include <chrono>
#include <cstddef>
#include <gmock/gmock.h>
#include <string>
#include <syslog.h>
#include <thread>
#include <vector>

#include "Os/Posix/SystemLogSink.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class SystemLogSink : public testing::Test {
 protected:
  // Returns what the log was sent and has not read yet.
  std::vector<std::string> read() {
    std::vector<std::string> messages;
    for (std::string text = m_log.receive(); !text.empty(); text = m_log.receive()) {
      messages.push_back(text);
    }
    return messages;
  }

  const test::TempDirectory m_directory;
  const std::string m_path = (m_directory.path() / "log").string();
  const test::DatagramSocket m_log{m_path};
  os::SystemLogSink m_sink{m_path};
};

TEST_F(SystemLogSink, WritesUnderTheIdentityOfTheAgents) {
  m_sink.write(LOG_ERR, "one\n");
  m_sink.write(LOG_DEBUG, "two\n");
  EXPECT_THAT(read(),
              ElementsAre(AllOf(StartsWith("<11>"), EndsWith(" Zolan Quorvel Provider: one\n")),
                          AllOf(StartsWith("<15>"), EndsWith(": two\n"))));
}

TEST_F(SystemLogSink, EscapesWhatWouldDisturbATerminal) {
  m_sink.write(LOG_ERR, "a\x1b[2Jb\n");
  EXPECT_THAT(read(), ElementsAre(EndsWith(": a\\x1b[2Jb\n")));
}

// Each record would wait for its own end otherwise: half a minute in all.
TEST_F(SystemLogSink, IsHeldUpOnceByALogThatDoesNotRead) {
  constexpr int kRecords = 300;
  constexpr int kMore = 1000;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kRecords + kMore; ++i) {
    m_sink.write(LOG_ERR, "record\n");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 100 * os::SystemLogSink::kPatience);
}

TEST_F(SystemLogSink, SaysHowManyRecordsWereDropped) {
  constexpr std::size_t kRecords = 1000;
  for (std::size_t i = 0; i < kRecords; ++i) {
    m_sink.write(LOG_ERR, "record\n");
  }
  const std::size_t taken = read().size();
  ASSERT_LT(taken, kRecords);
  m_sink.write(LOG_ERR, "last\n");
  m_sink.write(LOG_ERR, "very last\n");
  // As all records are written.
  EXPECT_THAT(read(), ElementsAre(HasSubstr(":os::SystemLogSink::write: error: " +
                                            std::to_string(kRecords - taken) +
                                            " records before this one were dropped"),
                                  EndsWith(": last\n"), EndsWith(": very last\n")));
}

// Returns how many records a message stands for: itself, or those of which it says that they were
// dropped.
std::size_t countOf(const std::string& message) {
  constexpr const char* kMark = "::write: error: ";
  const std::size_t mark = message.find(kMark);
  return mark == std::string::npos ? 1
                                   : std::stoul(message.substr(mark + std::string(kMark).size()));
}

// Each record is in the log or in one of its counts, whoever finds the log taking records again.
TEST_F(SystemLogSink, CountsEachRecordOfManyThreadsOnce) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kRecords = 2000;
  constexpr std::size_t kAll = kThreads * kRecords;
  std::atomic<std::size_t> written{0};
  std::size_t counted = 0;
  const auto readAll = [&] {
    for (const std::string& message : read()) {
      counted += countOf(message);
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&] {
        for (std::size_t i = 0; i < kRecords; ++i) {
          m_sink.write(LOG_ERR, "record\n");
          ++written;
        }
      });
    }
    for (std::size_t part = kAll / 10; part < kAll; part += kAll / 10) {
      EXPECT_TRUE(test::waitUntil([&] { return written >= part; }));
      readAll();
    }
  }
  readAll();
  // The count of those that were dropped last.
  m_sink.write(LOG_ERR, "last\n");
  readAll();
  EXPECT_EQ(counted, kAll + 1);
}

}  // namespace
