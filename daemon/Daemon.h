// The program `quorveld`, but for its entry point.
//
// The namespace of this folder is the program's name: the C library has a function `daemon`.

#ifndef ORVEX_DAEMON_DAEMON_H_
#define ORVEX_DAEMON_DAEMON_H_

#include <ostream>

#include "daemon/CommandLine.h"

namespace quorveld {

// Serves until a signal asks to stop and no job runs any more. To be called once in a process,
// before there are other threads. `out` gets a line for each address that is listened on, `err`
// what went wrong. Throws utils::Exception and std::system_error.
[[nodiscard]] ExitStatus runDaemon(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_DAEMON_H_
