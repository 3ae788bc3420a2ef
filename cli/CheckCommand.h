// The command `check`: asks whether a firmware file could be installed, and installs nothing.

#ifndef ORVEX_CLI_CHECKCOMMAND_H_
#define ORVEX_CLI_CHECKCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addCheckCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_CHECKCOMMAND_H_
