// Where the password for a host comes from. Never from an argument: other users could read it in
// the list of processes.

#ifndef ORVEX_CLI_POSIX_PASSWORD_H_
#define ORVEX_CLI_POSIX_PASSWORD_H_

#include <optional>
#include <string>

namespace cli {

// Returns the password that the user has laid down: the first line of the file, where one is given,
// else the environment variable QUORVEL_PASSWORD; nothing where neither is there. Throws Fault
// (usage) for a file that cannot be read, that is not the user's or root's alone, or whose first
// line is empty.
[[nodiscard]] std::optional<std::string> findPassword(const std::string& file);

}  // namespace cli

#endif  // ORVEX_CLI_POSIX_PASSWORD_H_
