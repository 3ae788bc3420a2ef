// The command `jobs`: shows the updates that were started and what became of them.

#ifndef ORVEX_CLI_JOBSCOMMAND_H_
#define ORVEX_CLI_JOBSCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addJobsCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_JOBSCOMMAND_H_
