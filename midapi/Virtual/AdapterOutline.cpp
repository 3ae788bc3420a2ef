#include "midapi/Virtual/AdapterOutline.h"

namespace ma {

AdapterListing outlineOf(const AdapterDescription& description) {
  AdapterListing listing;
  listing.pci = toString(description.pci);
  listing.name = description.name;
  listing.vendor = description.vendor;
  listing.device = description.device;
  listing.writeRate = description.writeRate;
  listing.isUpdatable = description.isUpdatable;
  listing.capabilityWord = description.capabilityWord;
  for (const PortDescription& port : description.ports) {
    listing.ports.push_back(
        {toString(PortId{description.pci, port.function}),
         port.mac,
         port.bootType,
         {},
         {LinkKind::Ethernet, port.state, port.mac, port.speed, port.maxSpeed, port.mtu}});
  }
  return listing;
}

}  // namespace ma
