// The command `show`: what a firmware file is, and what it would mean for each adapter. It needs no
// module.

#ifndef ORVEX_CLI_SHOWCOMMAND_H_
#define ORVEX_CLI_SHOWCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addShowCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_SHOWCOMMAND_H_
