#include "cli/OpenHost.h"

namespace cli {

std::unique_ptr<Connection> openHost(const GlobalOptions& /*options*/) {
  throw Fault(
      "--host: this program speaks to hosts on Linux only; run quorvel there, or without --host "
      "for "
      "the adapters of this machine",
      ExitStatus::Usage);
}

}  // namespace cli
