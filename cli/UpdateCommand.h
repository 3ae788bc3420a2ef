// The command `update`: updates the firmware of an adapter and follows it to its end.

#ifndef ORVEX_CLI_UPDATECOMMAND_H_
#define ORVEX_CLI_UPDATECOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addUpdateCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_UPDATECOMMAND_H_
