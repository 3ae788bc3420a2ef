// The log of the whole process: two entry points, one level, three sinks.
//
// The level is read from the environment variable ZOLAN_Quorvel_LOG_LEVEL by the first log call and
// stands until the process ends. Only its first character counts; anything but 0, 2 and 3 means 1.
//
//   level  debug entries go to                error entries go to
//   0      nowhere                            nowhere
//   1      nowhere                            event log
//   2      debug channel                      event log, debug channel
//   3      debug channel, standard error      event log, debug channel, standard error
//
// Any thread may log. An entry is built in a local string and handed to each sink whole. Logging
// throws nothing: where there is no memory for an entry, another stands in for it that says so.

#ifndef ORVEX_UTILS_LOG_H_
#define ORVEX_UTILS_LOG_H_

#include <string>

#include "Utils/Export.h"
#include "Utils/Format.h"

namespace utils {

// The name of the source file that a record comes from. Each .cpp that logs begins with one.
struct LogSource {
  const char* name;
};

// The qualified name of the function that logs, and the line: converting a name captures the line
// of the call that it is an argument of.
struct LogOrigin {
  constexpr LogOrigin(const char* functionName,  // NOLINT(google-explicit-constructor): meant so
                      int callLine = __builtin_LINE())
      : function(functionName), line(callLine) {}

  const char* function;
  int line;
};

// Log a printf-style message. Nothing is formatted where the level sends it nowhere, but for the
// error entry, which always builds its line.
ORVEX_CORE_API void logDebug(LogSource source, LogOrigin origin, const char* text, ...) noexcept
    ORVEX_PRINTF(3, 4);
ORVEX_CORE_API void logError(LogSource source, LogOrigin origin, const char* text, ...) noexcept
    ORVEX_PRINTF(3, 4);

// Returns true when debug entries go anywhere, for a caller whose arguments are costly to make.
[[nodiscard]] ORVEX_CORE_API bool isDebugLogged();

// Where finished lines go. The platform's sinks are the system log and its debug channel, and the
// standard error stream. Implementations are called from any thread and must not throw.
class ORVEX_CORE_API LogSinks {
 public:
  LogSinks() = default;
  LogSinks(const LogSinks&) = delete;
  LogSinks& operator=(const LogSinks&) = delete;
  virtual ~LogSinks();

  virtual void writeEventLog(const std::string& line) noexcept = 0;
  virtual void writeDebugChannel(const std::string& line) noexcept = 0;
  // `text` is the line after its per cent signs were interpreted: "%%" has become "%".
  virtual void writeStandardError(const std::string& text) noexcept = 0;
};

// Sends all later entries to `sinks`, which the caller owns and keeps alive; null brings the
// platform's sinks back. Returns the sinks that were set before, null for the platform's.
ORVEX_CORE_API LogSinks* exchangeLogSinks(LogSinks* sinks);

// Returns the platform's sinks. POSIX: syslog with ident "Zolan Quorvel Provider", LOG_ERR for the
// event log and LOG_DEBUG for the debug channel. Defined per platform.
[[nodiscard]] ORVEX_CORE_API LogSinks& platformLogSinks();

}  // namespace utils

#endif  // ORVEX_UTILS_LOG_H_
