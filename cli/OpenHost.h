// Connects a command to a host that serves CIM-XML. Defined per platform.

#ifndef ORVEX_CLI_OPENHOST_H_
#define ORVEX_CLI_OPENHOST_H_

#include <memory>

#include "cli/Context.h"
#include "client/Connection.h"

namespace cli {

// Returns a connection to the host that the options name; nothing is sent yet. The password of a
// user comes from where findPassword finds it, else from a prompt on the terminal. Throws Fault
// (usage) for an address that is none, a login that would go over the network readable, a password
// that is nowhere, and a certificate file that cannot be read. Windows throws it always.
[[nodiscard]] std::unique_ptr<client::Connection> openHost(const GlobalOptions& options);

}  // namespace cli

#endif  // ORVEX_CLI_OPENHOST_H_
