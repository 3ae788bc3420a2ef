// What the process may do that its settings depend on.

#ifndef ORVEX_DAEMON_POSIX_PRIVILEGES_H_
#define ORVEX_DAEMON_POSIX_PRIVILEGES_H_

#include <cstdint>
#include <vector>

#include "daemon/DaemonConfig.h"

namespace quorveld {

[[nodiscard]] Privileges readPrivileges();

// Returns the users whom no other one may keep out: root, and the one that the process runs as.
[[nodiscard]] std::vector<std::uint32_t> findTrustedUsers();

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_PRIVILEGES_H_
