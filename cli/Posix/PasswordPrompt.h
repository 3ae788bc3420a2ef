// Asks for a password on the terminal of the process.

#ifndef ORVEX_CLI_POSIX_PASSWORDPROMPT_H_
#define ORVEX_CLI_POSIX_PASSWORDPROMPT_H_

#include <optional>
#include <string>

namespace cli {

// Prints the prompt on the controlling terminal and returns the line that is typed there, which
// does not appear. Returns nothing where there is no terminal. A signal that ends the process (an
// interrupt, a hang-up) does so once the terminal shows again what is typed; a stop (Ctrl-Z) asks
// anew afterwards. A process in the background is stopped until it is brought to the
// front. Throws Fault where it cannot be, where the input ends and where the terminal fails. One
// call at a time.
[[nodiscard]] std::optional<std::string> askPassword(const std::string& prompt);

}  // namespace cli

#endif  // ORVEX_CLI_POSIX_PASSWORDPROMPT_H_
