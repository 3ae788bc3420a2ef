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

// Matches a record by its level, function and message; the latter two are texts or matchers.
template <class Function, class Message>
testing::Matcher<const LogRecord&> IsRecord(LogLevel level, const Function& function,
                                            const Message& message) {
  return testing::AllOf(
      testing::Field("level", &LogRecord::level, level),
      testing::Field("function", &LogRecord::function, testing::Matcher<std::string>(function)),
      testing::Field("message", &LogRecord::message, testing::Matcher<std::string>(message)));
}

// The same for the source, too.
template <class Function, class Message>
testing::Matcher<const LogRecord&> IsRecordOf(const std::string& source, LogLevel level,
                                              const Function& function, const Message& message) {
  return testing::AllOf(testing::Field("source", &LogRecord::source, source),
                        IsRecord(level, function, message));
}

// Match a list of records that has such a one.
template <class Function, class Message>
testing::Matcher<const std::vector<LogRecord>&> HasRecord(LogLevel level, const Function& function,
                                                          const Message& message) {
  return testing::Contains(IsRecord(level, function, message));
}

template <class Function, class Message>
testing::Matcher<const std::vector<LogRecord>&> HasRecordOf(const std::string& source,
                                                            LogLevel level,
                                                            const Function& function,
                                                            const Message& message) {
  return testing::Contains(IsRecordOf(source, level, function, message));
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_LOGCAPTURE_H_
