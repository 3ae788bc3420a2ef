// The command `instances`: shows the instances of a CIM class.

#ifndef ORVEX_CLI_INSTANCESCOMMAND_H_
#define ORVEX_CLI_INSTANCESCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addInstancesCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_INSTANCESCOMMAND_H_
