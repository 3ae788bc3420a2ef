// The command `invoke`: calls a method of a CIM instance, and waits for the job that it creates.

#ifndef ORVEX_CLI_INVOKECOMMAND_H_
#define ORVEX_CLI_INVOKECOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addInvokeCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_INVOKECOMMAND_H_
