#include "Utils/Log.h"

#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <exception>

namespace utils {
namespace {

constexpr int kLevelUnread = -1;
constexpr int kLevelErrors = 1;
constexpr int kLevelDebug = 2;
constexpr int kLevelConsole = 3;

std::atomic<int> s_level{kLevelUnread};
std::atomic<LogSinks*> s_sinks{nullptr};

int readLevel() {
  const char* value = std::getenv("ZOLAN_Quorvel_LOG_LEVEL");
  switch (value != nullptr ? value[0] : '\0') {
    case '0':
      return 0;
    case '2':
      return kLevelDebug;
    case '3':
      return kLevelConsole;
    default:
      return kLevelErrors;
  }
}

// Threads that race for the first read all compute the same value.
int currentLevel() {
  int level = s_level.load(std::memory_order_relaxed);
  if (level == kLevelUnread) {
    level = readLevel();
    s_level.store(level, std::memory_order_relaxed);
  }
  return level;
}

LogSinks& currentSinks() {
  LogSinks* sinks = s_sinks.load(std::memory_order_acquire);
  return sinks != nullptr ? *sinks : platformLogSinks();
}

// What stands in for an entry. Made at the start, when there is memory.
const std::string kLostEntry = "OrvexQuorvel: an entry is lost, since there is no memory for it\n";

// An entry, or what stands in for it.
class Line {
 public:
  Line(LogSource source, LogOrigin origin, const char* label, const char* text,
       va_list arguments) noexcept ORVEX_PRINTF(5, 0) {
    try {
      const std::string message = formatArguments(text, arguments);
      m_text = format("OrvexQuorvel: %s:%d:%s: %s: %s\n", source.name, origin.line, origin.function,
                      label, message.c_str());
    } catch (const std::exception&) {
      m_isLost = true;
    }
  }

  [[nodiscard]] const std::string& get() const noexcept { return m_isLost ? kLostEntry : m_text; }

 private:
  std::string m_text;
  bool m_isLost = false;
};

// The console copy has always read a line as a format without arguments; of what that did, only the
// harmless part is left: "%%" is one per cent sign, any other conversion stands as it is.
std::string interpretPercentSigns(const std::string& line) {
  std::string text;
  text.reserve(line.size());
  for (std::size_t i = 0; i < line.size(); ++i) {
    text.push_back(line[i]);
    if (line[i] == '%' && i + 1 < line.size() && line[i + 1] == '%') {
      ++i;
    }
  }
  return text;
}

void writeStandardError(LogSinks& sinks, const std::string& line) noexcept {
  try {
    sinks.writeStandardError(interpretPercentSigns(line));
  } catch (const std::exception&) {
    sinks.writeStandardError(kLostEntry);
  }
}

void writeDebugCopies(int level, LogSinks& sinks, const std::string& line) noexcept {
  if (level >= kLevelDebug) {
    sinks.writeDebugChannel(line);
  }
  if (level == kLevelConsole) {
    writeStandardError(sinks, line);
  }
}

}  // namespace

LogSinks::~LogSinks() = default;

void logDebug(LogSource source, LogOrigin origin, const char* text, ...) noexcept {
  const int level = currentLevel();
  if (level < kLevelDebug) {
    return;
  }
  va_list arguments;
  va_start(arguments, text);
  const Line line(source, origin, "debug", text, arguments);
  va_end(arguments);
  writeDebugCopies(level, currentSinks(), line.get());
}

void logError(LogSource source, LogOrigin origin, const char* text, ...) noexcept {
  const int level = currentLevel();
  va_list arguments;
  va_start(arguments, text);
  const Line line(source, origin, "error", text, arguments);
  va_end(arguments);
  LogSinks& sinks = currentSinks();
  if (level >= kLevelErrors) {
    sinks.writeEventLog(line.get());
  }
  writeDebugCopies(level, sinks, line.get());
}

bool isDebugLogged() {
  return currentLevel() >= kLevelDebug;
}

LogSinks* exchangeLogSinks(LogSinks* sinks) {
  return s_sinks.exchange(sinks, std::memory_order_acq_rel);
}

}  // namespace utils
