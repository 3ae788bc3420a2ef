// What other people's libraries in this process write to the system log, PAM's modules above all.
//
// They call syslog(), which waits for as long as the log does not read: one refused login would
// hold up all later ones, and the end of the daemon. So the program has functions of that name of
// its own, which the libraries find first. What they are given goes to the log under the daemon's
// name, by os::SystemLogSink, which waits a moment and tells how many records it dropped.
//
// Any thread.

#ifndef ORVEX_DAEMON_POSIX_LIBRARYLOG_H_
#define ORVEX_DAEMON_POSIX_LIBRARYLOG_H_

#include "Os/Posix/SystemLogSink.h"

namespace quorveld {

// Returns whether the libraries find the program's functions.
[[nodiscard]] bool isLibraryLogInForce();

// Sends what is written from now on to `sink`, which the caller owns and keeps alive; null brings
// the system log back. Returns the sink that was set before, null for the system log.
os::SystemLogSink* exchangeLibraryLog(os::SystemLogSink* sink);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_LIBRARYLOG_H_
