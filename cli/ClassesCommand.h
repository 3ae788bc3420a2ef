// The command `classes`: shows the CIM classes that are served, and by which agents.

#ifndef ORVEX_CLI_CLASSESCOMMAND_H_
#define ORVEX_CLI_CLASSESCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addClassesCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_CLASSESCOMMAND_H_
