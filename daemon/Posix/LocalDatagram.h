// Messages to other programs of this machine: to the system log and to the service manager.

#ifndef ORVEX_DAEMON_POSIX_LOCALDATAGRAM_H_
#define ORVEX_DAEMON_POSIX_LOCALDATAGRAM_H_

#include <string>

namespace quorveld {

// Sends a text as one datagram to a local socket: a path, or "@name" for an abstract one. Waits as
// long as the receiver has no room for it. Returns 0, or the error number of what went wrong. Any
// thread.
[[nodiscard]] int sendLocalDatagram(const std::string& socket, const std::string& text);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_LOCALDATAGRAM_H_
