#include <cstdio>
#include <new>
#include <syslog.h>

#include "Os/Posix/SystemLogSink.h"
#include "Utils/Log.h"
#include "Utils/Printable.h"

namespace utils {
namespace {

class PosixLogSinks : public LogSinks {
 public:
  void writeEventLog(const std::string& line) noexcept override { m_log.write(LOG_ERR, line); }

  void writeDebugChannel(const std::string& line) noexcept override {
    m_log.write(LOG_DEBUG, line);
  }

  void writeStandardError(const std::string& text) noexcept override {
    try {
      const std::string shown = toPrintableLines(text);
      std::fwrite(shown.data(), 1, shown.size(), stderr);
    } catch (const std::bad_alloc&) {
      static_cast<void>(std::fputs("OrvexQuorvel: a record is lost for want of memory\n", stderr));
    }
  }

 private:
  os::SystemLogSink m_log;
};

}  // namespace

LogSinks& platformLogSinks() {
  // Never destroyed: objects that are destroyed at the end of the process still log.
  static auto* sinks = new PosixLogSinks;
  return *sinks;
}

}  // namespace utils
