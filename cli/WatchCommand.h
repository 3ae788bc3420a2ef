// The command `watch`: follows a job of a host to its end.

#ifndef ORVEX_CLI_WATCHCOMMAND_H_
#define ORVEX_CLI_WATCHCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addWatchCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_WATCHCOMMAND_H_
