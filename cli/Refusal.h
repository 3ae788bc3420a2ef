// An update that was refused or failed: what happened and what to do about it, in words.

#ifndef ORVEX_CLI_REFUSAL_H_
#define ORVEX_CLI_REFUSAL_H_

#include <cstdint>
#include <optional>
#include <string>

#include "cli/Context.h"
#include "cli/JobWatch.h"
#include "client/Connection.h"
#include "client/Identities.h"
#include "client/MethodCall.h"

namespace cli {

// What an update asked for, as far as advice depends on it.
struct UpdateRequest {
  std::string imagePath;  // empty when the image was given as a URI
  bool hasTypes = false;
  bool isForced = false;
  bool isRemote = false;  // made to a host: the image is on its machine, its log tells the reason
  std::optional<client::Identity> identity{};  // the image, where it was given as such
  std::string program = "quorvel";             // that of the connection
  // What the flash library says of the image beside; empty where nothing, or it is not asked.
  std::string why{};
};

// Returns a request for the image of an identity.
[[nodiscard]] UpdateRequest requestIdentity(const client::Identity& identity, bool isForced,
                                            const client::Connection& connection);

// Returns what to do next about a refusal, empty when nothing is known. `reason` is that of
// MethodAnswer, with its type. Looks at the image file
// unless the request is remote.
[[nodiscard]] std::string adviseOnRefusal(std::uint32_t returnValue, const std::string& reason,
                                          const UpdateRequest& request);

// Prints the refusal of something, "update of 0000:03:00" for example, with its reason and what to
// do next, as far as they are known.
void reportRefusal(const Context& context, const std::string& what,
                   const client::MethodAnswer& answer, const UpdateRequest& request);

// Returns what to do next about a job that ended without success.
[[nodiscard]] std::string adviseOnFailure(const client::JobReport& job,
                                          const client::Connection& connection);

}  // namespace cli

#endif  // ORVEX_CLI_REFUSAL_H_
