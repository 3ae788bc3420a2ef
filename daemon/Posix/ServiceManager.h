// Tells the service manager how the daemon does (the protocol of sd_notify(3)): nothing where none
// asked for it. To be made before there are other threads; any of them may tell.

#ifndef ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_
#define ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_

#include <string>

namespace quorveld {

class ServiceManager {
 public:
  // Takes the address of the manager's socket from the environment (NOTIFY_SOCKET), and removes it
  // there: it is this process's alone.
  ServiceManager();

  void tellReady(const std::string& status) const;
  void tellStopping(const std::string& status) const;
  // One line for a person.
  void tellStatus(const std::string& status) const;

 private:
  // A failure is logged: the daemon does its work all the same.
  void send(const std::string& state, const std::string& status) const;

  std::string m_socket;  // a path; "@name" for an abstract socket; empty: nobody to tell
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_SERVICEMANAGER_H_
