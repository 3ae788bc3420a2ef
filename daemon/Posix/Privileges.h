// What the process may do that its settings depend on.

#ifndef ORVEX_DAEMON_POSIX_PRIVILEGES_H_
#define ORVEX_DAEMON_POSIX_PRIVILEGES_H_

#include "daemon/DaemonConfig.h"

namespace quorveld {

[[nodiscard]] Privileges readPrivileges();

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_PRIVILEGES_H_
