// The way to a host: CIM-XML over HTTP or HTTPS.

#ifndef ORVEX_CLIENT_HOSTHTTP_H_
#define ORVEX_CLIENT_HOSTHTTP_H_

#include <string>

#include "client/HostAddress.h"
#include "client/HostConnection.h"

namespace client {

// Returns what a connection to the host sends by; nothing is sent yet. `caFile` names certificates
// (PEM) that vouch for an https host in place of the system's; empty for those. A readable login
// goes to this machine alone. Throws Fault (usage) for an address or certificates that cannot be
// used.
[[nodiscard]] HostConnection::Send openHttp(const HostAddress& address, const std::string& caFile);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTHTTP_H_
