// The command `describe`: shows what a CIM class is, its properties and methods, and what their
// values stand for.

#ifndef ORVEX_CLI_DESCRIBECOMMAND_H_
#define ORVEX_CLI_DESCRIBECOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addDescribeCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_DESCRIBECOMMAND_H_
