// The description of a virtual adapter, and its text: the adapter.json in the adapter's folder.
//
//   {
//     "name": "Lab adapter", "pci": "0000:03:00", "vendorId": "1af4", "deviceId": "1041",
//     "ports": [{
//       "function": 0, "mac": "02:00:00:03:00:00", "bootType": 1,
//       "link": "up",           "down" or "disabled"; without it and the others nobody knows
//       "speed": 10000000000,   bits per second
//       "maxSpeed": 25000000000,
//       "mtu": 1500             bytes
//     }],
//     "writeRate": 131072,      bytes per second; 0, the default, is as fast as the disk
//     "updatable": true,        the default
//     "capabilityWord": 24,     bit n: image type number n is installed; 0 is the default
//     "faults": {               none by default
//       "write": {"atPercent": 40, "code": 17, "text": "..."},
//       "hang": {"atPercent": 30},
//       "capabilityWord": {"code": 18, "text": "..."}
//     }
//   }
//
// Fields that are not listed are ignored, and kept when a description is changed. The text is
// bounded (see BoundedJson.h): what is written here can be read here. Pure: no I/O.

#ifndef ORVEX_MIDAPI_VIRTUAL_ADAPTERDESCRIPTION_H_
#define ORVEX_MIDAPI_VIRTUAL_ADAPTERDESCRIPTION_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/DescriptionFault.h"
#include "midapi/FlashTypes.h"

namespace ma {

// Boot types are numbers up to this one.
inline constexpr auto kMaxBootType = static_cast<std::uint64_t>(BootType::Uefi);

struct PortDescription {
  std::uint8_t function = 0;
  std::string mac;
  BootType bootType = BootType::None;
  PortState state = PortState::Unknown;
  std::optional<std::uint64_t> speed{};     // bits per second
  std::optional<std::uint64_t> maxSpeed{};  // the same
  std::optional<std::uint64_t> mtu{};       // bytes
};

// A failure that the description asks for: its code and text are the answer of the operation.
struct InjectedFault {
  std::uint32_t code = 0;
  std::string text;
};

struct InjectedWriteFault {
  std::uint32_t atPercent = 0;
  InjectedFault fault;
};

struct AdapterDescription {
  std::string name;
  AdapterAddress pci;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  // Ordered by function, at least one.
  std::vector<PortDescription> ports;
  std::uint64_t writeRate = 0;
  bool isUpdatable = true;
  std::uint32_t capabilityWord = 0;

  std::optional<InjectedWriteFault> writeFault;
  std::optional<std::uint32_t> hangAtPercent;
  std::optional<InjectedFault> capabilityWordFault;

  // Returns the port of that function, or null.
  [[nodiscard]] const PortDescription* findPort(std::uint8_t function) const;
};

// Reads a description. Throws DescriptionFault.
[[nodiscard]] AdapterDescription parseDescription(std::string_view text);

// Returns the text of a description. Throws DescriptionFault where it would be too large to read.
[[nodiscard]] std::string formatDescription(const AdapterDescription& description);

// What may change in a description: boot types by function, and the capability word.
struct DescriptionChange {
  std::map<std::uint8_t, BootType> bootTypes;
  std::optional<std::uint32_t> capabilityWord;
};

// Returns `text`, a valid description, with what the change says of the ports that it has; the text
// itself where that says nothing else. Throws DescriptionFault, also where the text would be too
// large to read.
[[nodiscard]] std::string withChange(std::string_view text, const DescriptionChange& change);

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_ADAPTERDESCRIPTION_H_
