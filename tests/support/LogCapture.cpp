#include "tests/support/LogCapture.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string_view>

namespace test {
namespace {

constexpr std::string_view kPrefix = "OrvexQuorvel: ";
constexpr std::string_view kDebugLabel = ": debug: ";
constexpr std::string_view kErrorLabel = ": error: ";

}  // namespace

std::ostream& operator<<(std::ostream& stream, LogLevel level) {
  return stream << (level == LogLevel::Debug ? "debug" : "error");
}

void PrintTo(const LogRecord& record, std::ostream* stream) {
  *stream << record.source << ":" << record.line << ":" << record.function << ": " << record.level
          << ": " << record.message;
}

LogRecord parseLogLine(const std::string& line) {
  const std::size_t sourceEnd = line.find(':', kPrefix.size());
  const std::size_t lineEnd =
      sourceEnd != std::string::npos ? line.find(':', sourceEnd + 1) : std::string::npos;
  const std::size_t label =
      std::min(line.find(kDebugLabel, lineEnd), line.find(kErrorLabel, lineEnd));
  if (!line.starts_with(kPrefix) || !line.ends_with('\n') || lineEnd == std::string::npos ||
      label == std::string::npos) {
    throw std::invalid_argument("no log record: " + line);
  }
  LogRecord record;
  record.source = line.substr(kPrefix.size(), sourceEnd - kPrefix.size());
  record.line = std::stoi(line.substr(sourceEnd + 1, lineEnd - sourceEnd - 1));
  record.function = line.substr(lineEnd + 1, label - lineEnd - 1);
  record.level =
      line.compare(label, kErrorLabel.size(), kErrorLabel) == 0 ? LogLevel::Error : LogLevel::Debug;
  const std::size_t message = label + kErrorLabel.size();
  record.message = line.substr(message, line.size() - 1 - message);
  return record;
}

LogCapture::LogCapture() : m_previous(utils::exchangeLogSinks(this)) {}

LogCapture::~LogCapture() {
  utils::exchangeLogSinks(m_previous);
}

std::vector<std::string> LogCapture::lines(LogSink sink) const {
  const platform::Lock lock(m_mutex);
  return m_lines.at(static_cast<std::size_t>(sink));
}

std::vector<LogRecord> LogCapture::records(LogSink sink) const {
  std::vector<LogRecord> records;
  for (const std::string& line : lines(sink)) {
    records.push_back(parseLogLine(line));
  }
  return records;
}

std::vector<std::string> LogCapture::messages(const std::string& function) const {
  std::vector<std::string> messages;
  for (const LogRecord& record : records()) {
    if (record.function == function) {
      messages.push_back(record.message);
    }
  }
  return messages;
}

void LogCapture::clear() {
  const platform::Lock lock(m_mutex);
  for (std::vector<std::string>& lines : m_lines) {
    lines.clear();
  }
}

void LogCapture::writeEventLog(const std::string& line) noexcept {
  append(LogSink::EventLog, line);
}

void LogCapture::writeDebugChannel(const std::string& line) noexcept {
  append(LogSink::DebugChannel, line);
}

void LogCapture::writeStandardError(const std::string& text) noexcept {
  append(LogSink::StandardError, text);
}

void LogCapture::append(LogSink sink, const std::string& line) {
  const platform::Lock lock(m_mutex);
  m_lines.at(static_cast<std::size_t>(sink)).push_back(line);
}

testing::Matcher<const LogRecord&> IsRecord(LogLevel level, const TextMatcher& function,
                                            const TextMatcher& message) {
  return testing::AllOf(testing::Field("level", &LogRecord::level, level),
                        testing::Field("function", &LogRecord::function, function),
                        testing::Field("message", &LogRecord::message, message));
}

testing::Matcher<const LogRecord&> IsRecordOf(const std::string& source, LogLevel level,
                                              const TextMatcher& function,
                                              const TextMatcher& message) {
  return testing::AllOf(testing::Field("source", &LogRecord::source, source),
                        IsRecord(level, function, message));
}

RecordsMatcher HasRecord(LogLevel level, const TextMatcher& function, const TextMatcher& message) {
  return testing::Contains(IsRecord(level, function, message));
}

RecordsMatcher HasRecordOf(const std::string& source, LogLevel level, const TextMatcher& function,
                           const TextMatcher& message) {
  return testing::Contains(IsRecordOf(source, level, function, message));
}

}  // namespace test
