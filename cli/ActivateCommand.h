// The command `activate`: puts the firmware into force that an adapter has stored, or tells what
// that takes. It needs no module.

#ifndef ORVEX_CLI_ACTIVATECOMMAND_H_
#define ORVEX_CLI_ACTIVATECOMMAND_H_

#include "cli/Context.h"
#include "host/ParserNames.h"

namespace cli {

// Adds the command to the program's arguments. When they choose it, it becomes the context's
// command.
void addActivateCommand(CLI::App& program, Context& context);

}  // namespace cli

#endif  // ORVEX_CLI_ACTIVATECOMMAND_H_
