// Tells the service manager how the daemon does (the protocol of sd_notify(3)): nothing where none
// asked for it. To be made before there are other threads; any of them may tell.

#ifndef ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_
#define ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_

#include <atomic>
#include <chrono>
#include <string>

#include "platform/Clock.h"

namespace quorveld {

class ServiceManager {
 public:
  // Takes the address of the manager's socket from the environment (NOTIFY_SOCKET), and after how
  // long it takes a silent process for one that hangs (WATCHDOG_USEC), and removes them there: they
  // are this process's alone. The clock outlives the object.
  explicit ServiceManager(platform::Clock& clock = platform::steadyClock());

  void tellReady(const std::string& status) const;
  void tellStopping(const std::string& status) const;
  // To be called often while all is well: tells so in time, and not more often than that takes.
  void tellAlive() const;
  // What a person reads, on one line: where the daemon has failed, the manager shows it longer than
  // its own records, which come behind those of the daemon.
  void tellStatus(const std::string& status) const;

 private:
  // A failure is logged: the daemon does its work all the same.
  void send(const std::string& text) const;

  platform::Clock& m_clock;
  std::string m_socket;  // a path; "@name" for an abstract socket; empty: nobody to tell
  platform::Clock::Duration m_aliveInterval{0};                        // zero: nobody watches
  mutable std::atomic<platform::Clock::Duration::rep> m_nextAlive{0};  // of the clock
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_
