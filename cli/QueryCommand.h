// The command `query`: shows the instances that a query finds.

#ifndef ORVEX_CLI_QUERYCOMMAND_H_
#define ORVEX_CLI_QUERYCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addQueryCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_QUERYCOMMAND_H_
