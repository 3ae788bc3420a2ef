// The system log as a sink of the process's log: identity "Zolan Quorvel Provider", facility user,
// where nothing else is said.
//
// The connection is opened and closed for each record: the process is the host's, which may use the
// system log under a name of its own. A log that does not read must not hold up who writes: a
// record waits for it a moment, and where that was in vain it is dropped, as are those behind it
// until the log takes one at once. The first record that it takes again has another in front of it
// that says how many were dropped.

#ifndef ORVEX_OS_POSIX_SYSTEMLOGSINK_H_
#define ORVEX_OS_POSIX_SYSTEMLOGSINK_H_

#include <chrono>
#include <cstdint>
#include <string>

#include "Utils/Export.h"
#include "platform/Mutex.h"
#include "platform/Posix/SystemLog.h"

namespace os {

// Any thread.
class ORVEX_CORE_API SystemLogSink {
 public:
  static constexpr const char* kIdent = "Zolan Quorvel Provider";
  static constexpr std::chrono::milliseconds kPatience{100};

  explicit SystemLogSink(std::string socket = platform::kSystemLogSocket,
                         std::string ident = kIdent);

  // `priority` is the severity of syslog(3), or facility and severity. What would disturb a
  // terminal that the log is read on is escaped (see Utils/Printable.h).
  void write(int priority, const std::string& line) noexcept;

 private:
  // Returns whether the log has taken it.
  bool send(int priority, const std::string& line, std::chrono::milliseconds patience)
      ORVEX_REQUIRES(m_mutex);

  const std::string m_socket;
  const std::string m_ident;
  platform::Mutex m_mutex;
  std::uint64_t m_dropped ORVEX_GUARDED_BY(m_mutex) = 0;  // since the log took the last one
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_SYSTEMLOGSINK_H_
