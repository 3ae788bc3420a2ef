// The program `quorvel`: its arguments, its commands, its exit status.

#ifndef ORVEX_CLI_PROGRAM_H_
#define ORVEX_CLI_PROGRAM_H_

#include <ostream>

namespace cli {

// Runs the command that the arguments name and returns the exit status of the process: 0 done, 1
// refused or failed, 2 wrong usage. Results go to `out`, everything else to `err`; a result that
// cannot be written is a failure. To be called once, since it sets up the process.
[[nodiscard]] int runProgram(int argc, const char* const* argv, std::ostream& out,
                             std::ostream& err);

}  // namespace cli

#endif  // ORVEX_CLI_PROGRAM_H_
