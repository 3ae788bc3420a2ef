// The command `identities`: shows the firmware files that can be installed, compared with what each
// adapter holds.

#ifndef ORVEX_CLI_IDENTITIESCOMMAND_H_
#define ORVEX_CLI_IDENTITIESCOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addIdentitiesCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_IDENTITIESCOMMAND_H_
