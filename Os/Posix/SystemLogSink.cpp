#include "Os/Posix/SystemLogSink.h"

#include <new>
#include <syslog.h>
#include <utility>

#include "Utils/Printable.h"

namespace os {

SystemLogSink::SystemLogSink(std::string socket) : m_socket(std::move(socket)) {}

void SystemLogSink::write(int severity, const std::string& line) noexcept {
  const platform::Lock lock(m_mutex);
  try {
    if (m_dropped > 0 &&
        send(LOG_ERR,
             "OrvexQuorvel: SystemLogSink: error: " + std::to_string(m_dropped) +
                 " records before this one were dropped: the system log did not take them\n",
             std::chrono::milliseconds(0))) {
      m_dropped = 0;
    }
    if (m_dropped == 0 && send(severity, utils::toPrintableLines(line), kPatience)) {
      return;
    }
  } catch (const std::bad_alloc&) {
    // Counted as one that was dropped.
  }
  ++m_dropped;
}

bool SystemLogSink::send(int severity, const std::string& line,
                         std::chrono::milliseconds patience) {
  return platform::sendSystemLogMessage(m_socket, LOG_USER | severity, kIdent, line, patience) == 0;
}

}  // namespace os
