// Messages to the system log, and to other programs that listen on a local socket.
//
// The C library's syslog() waits for as long as the log has no room, and has one identity and
// facility for a whole process. Here each message says under which it goes, and waits no longer
// than its sender has time for. Any thread.

#ifndef ORVEX_PLATFORM_POSIX_SYSTEMLOG_H_
#define ORVEX_PLATFORM_POSIX_SYSTEMLOG_H_

#include <chrono>
#include <string>

namespace platform {

inline constexpr const char* kSystemLogSocket = "/dev/log";

// Sends a text as one message to a local socket: a path, or "@name" for an abstract one. Waits for
// room at the receiver's for `patience` at the most. Returns 0, EAGAIN when there was none, or the
// error number of what went wrong. A socket of connections gets the text with a zero behind it.
[[nodiscard]] int sendLocalMessage(const std::string& socket, const std::string& text,
                                   std::chrono::milliseconds patience);

// The same with a message of the system log: `priority` is facility and severity of syslog(3),
// `tag` who writes ("quorveld[12]").
[[nodiscard]] int sendSystemLogMessage(const std::string& socket, int priority,
                                       const std::string& tag, const std::string& text,
                                       std::chrono::milliseconds patience);

}  // namespace platform

#endif  // ORVEX_PLATFORM_POSIX_SYSTEMLOG_H_
