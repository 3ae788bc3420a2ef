// The command `associations`: shows what refers to an instance, and what that leads to.

#ifndef ORVEX_CLI_ASSOCIATIONSCOMMAND_H_
#define ORVEX_CLI_ASSOCIATIONSCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addAssociationsCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_ASSOCIATIONSCOMMAND_H_
