// The command `adapters`: shows the adapters of this machine, and makes virtual ones. It needs no
// module.

#ifndef ORVEX_CLI_ADAPTERSCOMMAND_H_
#define ORVEX_CLI_ADAPTERSCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addAdaptersCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_ADAPTERSCOMMAND_H_
