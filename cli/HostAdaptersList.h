// The adapters of a host as the command `adapters` prints them.

#ifndef ORVEX_CLI_HOSTADAPTERSLIST_H_
#define ORVEX_CLI_HOSTADAPTERSLIST_H_

#include <vector>

#include "cli/Context.h"
#include "client/HostAdapters.h"

namespace cli {

// Prints one line for each port, or with --json one document.
void printHostAdapters(const Context& context, const std::vector<client::HostAdapter>& adapters);

}  // namespace cli

#endif  // ORVEX_CLI_HOSTADAPTERSLIST_H_
