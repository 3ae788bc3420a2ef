// What a user calls the target of an update.

#ifndef ORVEX_CLI_TARGETNAME_H_
#define ORVEX_CLI_TARGETNAME_H_

#include <string>

#include "client/Target.h"

namespace cli {

// Reads "0000:03:00.0", "0000:03:00" or an object path.
[[nodiscard]] client::TargetName parseTarget(const std::string& text);

}  // namespace cli

#endif  // ORVEX_CLI_TARGETNAME_H_
