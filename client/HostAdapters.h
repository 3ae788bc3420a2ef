// The adapters of a host, as far as its instances tell: ports, adapters and the types and versions
// of the images that are installed.

#ifndef ORVEX_CLIENT_HOSTADAPTERS_H_
#define ORVEX_CLIENT_HOSTADAPTERS_H_

#include <string>
#include <vector>

#include "client/Connection.h"

namespace client {

struct HostAdapter {
  struct Component {
    std::string type;  // "IMG_PXE"; several with '+' between them
    std::string version;
  };
  // What a driver says of one part of the firmware. Empty: it does not tell.
  struct Versions {
    std::string name;  // "fw.undi"
    std::string running;
    std::string stored;
  };

  std::string pci;                 // "0000:03:00"
  std::vector<std::string> ports;  // "0000:03:00.0"
  std::vector<Component> components;
  std::vector<Versions> versions;
};

// Returns the adapters in the order in which they are served. A port belongs to the adapter with
// which its identifier begins; installed firmware to the one with which it is associated.
[[nodiscard]] std::vector<HostAdapter> readHostAdapters(Connection& connection);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTADAPTERS_H_
