#include "Os/Posix/SystemLogSink.h"

#include <new>
#include <syslog.h>
#include <utility>

#include "Utils/Format.h"
#include "Utils/Printable.h"

namespace os {

SystemLogSink::SystemLogSink(std::string socket, std::string ident)
    : m_socket(std::move(socket)), m_ident(std::move(ident)) {}

void SystemLogSink::write(int priority, const std::string& line) noexcept {
  const platform::Lock lock(m_mutex);
  try {
    if (m_dropped > 0 &&
        send(LOG_ERR,
             utils::format("OrvexQuorvel: SystemLogSink:%d:os::SystemLogSink::write: error: ",
                           __LINE__) +
                 std::to_string(m_dropped) +
                 " records before this one were dropped: the system log did not take them\n",
             std::chrono::milliseconds(0))) {
      m_dropped = 0;
    }
    if (m_dropped == 0 && send(priority, utils::toPrintableLines(line), kPatience)) {
      return;
    }
  } catch (const std::bad_alloc&) {
    // Counted as one that was dropped.
  }
  ++m_dropped;
}

bool SystemLogSink::send(int priority, const std::string& line,
                         std::chrono::milliseconds patience) {
  const int facility = (priority & LOG_FACMASK) == 0 ? LOG_USER : 0;
  return platform::sendSystemLogMessage(m_socket, facility | priority, m_ident, line, patience) ==
         0;
}

}  // namespace os
