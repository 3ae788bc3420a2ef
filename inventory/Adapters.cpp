#include "inventory/Adapters.h"

#include <utility>

#include "midapi/MidApi.h"

namespace inventory {

std::vector<Adapter> findAdapters() {
  std::vector<Adapter> adapters;
  for (const std::string& port : ma::enumerateAdapters()) {
    std::string identity = getAdapterIdentity(port);
    // Ordered by address, the ports of an adapter follow each other.
    if (adapters.empty() || adapters.back().identity != identity) {
      adapters.push_back({std::move(identity), port});
    }
  }
  return adapters;
}

std::string getAdapterIdentity(const std::string& portIdentity) {
  return portIdentity.substr(0, portIdentity.rfind('.'));
}

}  // namespace inventory
