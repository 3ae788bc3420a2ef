// The log records of a test: what was logged while a LogCapture lives, by sink, taken apart.
//
// The entry point of the test programs (TestMain.cpp) sets level 3, at which every record reaches
// the debug channel, and silences the sinks; a LogCapture stands in their place for its lifetime.
// Any thread may log meanwhile; threads that log must have ended before the capture does.

#ifndef ORVEX_TESTS_SUPPORT_LOGCAPTURE_H_
#define ORVEX_TESTS_SUPPORT_LOGCAPTURE_H_

#include <array>
#include <cstddef>
#include <gmock/gmock.h>
#include <iosfwd>
#include <string>
#include <vector>

#include "Utils/Log.h"
#include "platform/Mutex.h"

namespace test {

enum class LogLevel { Debug, Error };
enum class LogSink { EventLog, DebugChannel, StandardError };

struct LogRecord {
  std::string source;
  int line = 0;
  std::string function;
  LogLevel level = LogLevel::Debug;
  std::string message;
};

std::ostream& operator<<(std::ostream& stream, LogLevel level);
void PrintTo(const LogRecord& record, std::ostream* stream);

// Takes a line apart. Throws std::invalid_argument for one that is no record.
[[nodiscard]] LogRecord parseLogLine(const std::string& line);

class LogCapture : private utils::LogSinks {
 public:
  LogCapture();
  ~LogCapture() override;

  // Return what reached the sink, oldest first.
  [[nodiscard]] std::vector<std::string> lines(LogSink sink = LogSink::DebugChannel) const;
  [[nodiscard]] std::vector<LogRecord> records(LogSink sink = LogSink::DebugChannel) const;
  // Returns the messages of one function, oldest first.
  [[nodiscard]] std::vector<std::string> messages(const std::string& function) const;

  void clear();

 private:
  void writeEventLog(const std::string& line) noexcept override;
  void writeDebugChannel(const std::string& line) noexcept override;
  void writeStandardError(const std::string& text) noexcept override;

  void append(LogSink sink, const std::string& line);

  mutable platform::Mutex m_mutex;
  std::array<std::vector<std::string>, 3> m_lines ORVEX_GUARDED_BY(m_mutex);  // by sink
  // Last: from its construction on, threads log here.
  utils::LogSinks* const m_previous;
};

// What a record's text is compared with: a text or a matcher. The matchers are made in
// LogCapture.cpp, since each use would have them compiled anew.
using TextMatcher = testing::Matcher<std::string>;

// Matches a record by its level, function and message.
[[nodiscard]] testing::Matcher<const LogRecord&> IsRecord(LogLevel level,
                                                          const TextMatcher& function,
                                                          const TextMatcher& message);
// The same for the source, too.
[[nodiscard]] testing::Matcher<const LogRecord&> IsRecordOf(const std::string& source,
                                                            LogLevel level,
                                                            const TextMatcher& function,
                                                            const TextMatcher& message);

// Match a list of records that has such a one.
using RecordsMatcher = testing::Matcher<const std::vector<LogRecord>&>;
[[nodiscard]] RecordsMatcher HasRecord(LogLevel level, const TextMatcher& function,
                                       const TextMatcher& message);
[[nodiscard]] RecordsMatcher HasRecordOf(const std::string& source, LogLevel level,
                                         const TextMatcher& function, const TextMatcher& message);

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_LOGCAPTURE_H_
