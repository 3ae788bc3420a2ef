// Adapters and ports of this machine, as a user names them to a command that speaks to no agent.

#ifndef ORVEX_CLI_LOCALTARGET_H_
#define ORVEX_CLI_LOCALTARGET_H_

#include <string>

namespace cli {

// Returns the port that the text names ("0000:03:00.0"), the first one of the adapter that it names
// ("0000:03:00"). Throws client::Fault, which lists what there is, for another text and where there
// is none.
[[nodiscard]] std::string findLocalPort(const std::string& text);

// Returns the adapter of a port's identifier.
[[nodiscard]] std::string adapterOfPort(const std::string& port);

}  // namespace cli

#endif  // ORVEX_CLI_LOCALTARGET_H_
