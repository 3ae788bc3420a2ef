// Why the flash library of this machine refuses a file: which device it is for, which version is
// older than which.

#ifndef ORVEX_CLI_LOCALREASON_H_
#define ORVEX_CLI_LOCALREASON_H_

#include <string>

namespace cli {

// Returns why, in one line; empty where the library has nothing to say, and where it cannot be
// asked, since the target, the file or a type is none. `target` is a port or an adapter, `types`
// are names with '+' between them, empty for all.
[[nodiscard]] std::string findLocalReason(const std::string& target, const std::string& file,
                                          const std::string& types);

}  // namespace cli

#endif  // ORVEX_CLI_LOCALREASON_H_
