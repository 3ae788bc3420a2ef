#include "cli/OpenHost.h"

#include "client/Fault.h"

namespace cli {

std::unique_ptr<client::Connection> openHost(const GlobalOptions& /*options*/) {
  throw client::Fault(
      "--host: this program speaks to hosts on Linux only; run quorvel there, or without --host "
      "for "
      "the adapters of this machine",
      client::Fault::Kind::Usage);
}

}  // namespace cli
