// What `quorveld` is told by its arguments.

#ifndef ORVEX_DAEMON_COMMANDLINE_H_
#define ORVEX_DAEMON_COMMANDLINE_H_

#include <optional>
#include <ostream>

#include "daemon/DaemonConfig.h"

namespace quorveld {

// The numbers are the program's exit statuses.
enum class ExitStatus : int {
  Done = 0,
  Failed = 1,
  Usage = 2,  // wrong arguments or settings
};

struct CommandLine {
  // What the daemon is to run with: the settings of its file, and over them those of the arguments.
  // Null where there is nothing to run.
  std::optional<DaemonConfig> config;
  ExitStatus status = ExitStatus::Done;  // then
};

// Reads the arguments and the file that they name. Help and version go to `out`, what is wrong with
// the arguments to `err`. Throws ConfigurationFault for settings that cannot be put in force.
[[nodiscard]] CommandLine readCommandLine(int argc, const char* const* argv, std::ostream& out,
                                          std::ostream& err);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_COMMANDLINE_H_
