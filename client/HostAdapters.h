// The adapters of a host, as far as its instances tell.

#ifndef ORVEX_CLIENT_HOSTADAPTERS_H_
#define ORVEX_CLIENT_HOSTADAPTERS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/Connection.h"

namespace client {

struct HostAdapter {
  struct Component {
    std::string type;  // "IMG_PXE"; several with '+' between them
    std::string version;
    std::string digest{};  // sixteen hexadecimal digits
  };
  // What a driver says of one part of the firmware. Empty: it does not tell.
  struct Versions {
    std::string name;  // "fw.undi"
    std::string running;
    std::string stored;
  };
  struct Port {
    std::string identifier;                   // "0000:03:00.0"
    std::string mac{};                        // "02:54:4e:00:00:30"
    std::optional<std::uint32_t> bootType{};  // see ma::BootType
    std::vector<std::string> interfaces{};
  };
  // What hosts of earlier versions do not tell. What is empty is not known.
  struct Description {
    std::string name;
    std::uint16_t vendor = 0;
    std::uint16_t device = 0;
    bool isUpdatable = false;
    std::string whyNotUpdatable{};
    bool isBeingWritten = false;
    std::string driver{};
    std::string partNumber{};
    std::string serialNumber{};
  };

  std::string pci;  // "0000:03:00"
  std::vector<Port> ports;
  std::vector<Component> components;
  std::vector<Versions> versions;
  std::optional<Description> description{};
};

// Returns the adapters in the order in which they are served. A port belongs to the adapter with
// which its identifier begins; installed firmware to the one with which it is associated.
[[nodiscard]] std::vector<HostAdapter> readHostAdapters(Connection& connection);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTADAPTERS_H_
