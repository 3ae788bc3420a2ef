// The adapters that the flash library manages. Any thread may call.

#ifndef ORVEX_INVENTORY_ADAPTERS_H_
#define ORVEX_INVENTORY_ADAPTERS_H_

#include <string>
#include <vector>

namespace inventory {

struct Adapter {
  std::string identity;   // "0000:03:00"
  std::string firstPort;  // by which the flash library knows it, too: "0000:03:00.0"
};

// Returns the adapters, ordered by PCI address.
[[nodiscard]] std::vector<Adapter> findAdapters();

// Returns the identity of the adapter that a port belongs to: the port's without its function.
[[nodiscard]] std::string getAdapterIdentity(const std::string& portIdentity);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_ADAPTERS_H_
