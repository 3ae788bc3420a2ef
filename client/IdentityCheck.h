// Whether a firmware file could be installed on an adapter, as the inventory that serves both
// compares them: nobody calls a method, and nothing is reserved.

#ifndef ORVEX_CLIENT_IDENTITYCHECK_H_
#define ORVEX_CLIENT_IDENTITYCHECK_H_

#include <string>

#include "client/Connection.h"
#include "client/Identities.h"

namespace client {

struct IdentityCheck {
  // What CheckSoftwareIdentity would answer, as far as a comparison tells: returnValue, returnText
  // and reason.
  MethodAnswer answer;
  std::string comparison;  // "newer" for example; empty where there is none
};

// Compares a software identity with the adapter of the port or adapter at an object path. Throws as
// Connection does.
[[nodiscard]] IdentityCheck compareIdentity(Connection& connection, const Identity& identity,
                                            const std::string& targetPath);

}  // namespace client

#endif  // ORVEX_CLIENT_IDENTITYCHECK_H_
