#include <cstdio>
#include <syslog.h>

#include "Utils/Log.h"
#include "platform/Mutex.h"

namespace utils {
namespace {

constexpr const char* kIdent = "Zolan Quorvel Provider";

// The connection is opened and closed for each entry: the process is the host's, which may use the
// system log under a name of its own.
void writeSystemLog(int priority, const std::string& line) noexcept {
  static platform::Mutex mutex;
  const platform::Lock lock(mutex);
  openlog(kIdent, 0, LOG_USER);
  syslog(LOG_USER | priority, "%s", line.c_str());
  closelog();
}

class PosixLogSinks : public LogSinks {
 public:
  void writeEventLog(const std::string& line) noexcept override { writeSystemLog(LOG_ERR, line); }

  void writeDebugChannel(const std::string& line) noexcept override {
    writeSystemLog(LOG_DEBUG, line);
  }

  void writeStandardError(const std::string& text) noexcept override {
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
};

}  // namespace

LogSinks& platformLogSinks() {
  // Never destroyed: objects that are destroyed at the end of the process still log.
  static auto* sinks = new PosixLogSinks;
  return *sinks;
}

}  // namespace utils
