// The methods of the installation service, as a management client calls them. All of them throw
// Fault when there is no service, and as Connection::invoke.

#ifndef ORVEX_CLIENT_INSTALLATIONSERVICE_H_
#define ORVEX_CLIENT_INSTALLATIONSERVICE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "client/Connection.h"

namespace client {

// What an update may be told beside its image and its target.
struct UpdateOptions {
  bool isForced = false;
  std::string types;  // image types, "IMG_PXE+IMG_UEFI"; empty for all that the image holds
};

// Returns the answer to InstallFromURI. `onStart` is as in Connection::invoke, here and below.
[[nodiscard]] MethodAnswer installFromUri(Connection& connection, const std::string& uri,
                                          const std::string& targetPath,
                                          const UpdateOptions& options,
                                          const OnStart& onStart = {});

// Returns the answer to InstallFromSoftwareIdentity, which refuses options with types.
[[nodiscard]] MethodAnswer installFromIdentity(Connection& connection,
                                               const std::string& identityPath,
                                               const std::string& targetPath,
                                               const UpdateOptions& options,
                                               const OnStart& onStart = {});

struct CheckAnswer {
  MethodAnswer call;
  // What the installation takes, as numbers of InstallCharacteristics; empty when it is refused.
  std::vector<std::uint16_t> characteristics;
};

// Returns the answer to CheckSoftwareIdentity. A check that passes leaves its target reserved for
// the life of the process that serves it.
[[nodiscard]] CheckAnswer checkIdentity(Connection& connection, const std::string& identityPath,
                                        const std::string& targetPath);

// Returns the meaning of a number of InstallCharacteristics: "no reboot required" for 7.
[[nodiscard]] std::string describeCharacteristic(std::uint16_t number);

}  // namespace client

#endif  // ORVEX_CLIENT_INSTALLATIONSERVICE_H_
