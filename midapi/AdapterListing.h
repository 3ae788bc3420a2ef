// All that is known of adapters, as a person wants to see it. Plain values.

#ifndef ORVEX_MIDAPI_ADAPTERLISTING_H_
#define ORVEX_MIDAPI_ADAPTERLISTING_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/FlashTypes.h"

namespace ma {

// Who drives an adapter.
enum class AdapterKind { Virtual, Kernel };

// What a port is a port of.
enum class LinkKind { Unknown, Ethernet, InfiniBand, Wireless };

// Whether frames go through a port.
enum class PortState {
  Unknown,
  Disabled,  // by who runs the machine
  Offline,   // enabled, without a link
  Enabled,
  InTest,
};

// What is known of a port's link at the moment.
struct PortLink {
  LinkKind kind = LinkKind::Unknown;
  PortState state = PortState::Unknown;
  std::string permanentMac{};                   // that of its maker; empty: not known
  std::optional<std::uint64_t> speed{};         // bits per second
  std::optional<std::uint64_t> maxSpeed{};      // the same, of what it can do
  std::optional<std::uint64_t> largestFrame{};  // its MTU, in bytes

  friend bool operator==(const PortLink&, const PortLink&) = default;
};

struct AdapterPort {
  // As the flash library names the port: "0000:03:00.0".
  std::string identifier;
  std::string mac;
  BootType bootType = BootType::None;
  // Of a kernel adapter: its network interfaces, "eth0"; some drivers make none, some several.
  std::vector<std::string> interfaces;
  PortLink link{};  // of the first interface where there are several

  friend bool operator==(const AdapterPort&, const AdapterPort&) = default;
};

// One image in an adapter's flash.
struct AdapterComponent {
  utils::FirmwareType type = utils::FirmwareType::None;
  utils::FirmwareVersion version;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  // False for an image that is for other devices only.
  bool isForAdapter = false;
  std::size_t offset = 0;
  std::size_t length = 0;
  // FNV-1a of the image's bytes: tells images of one version apart.
  std::uint64_t digest = 0;

  friend bool operator==(const AdapterComponent&, const AdapterComponent&) = default;
};

// What a driver says of one part of the firmware, by its standard name ("fw.undi", see the kernel's
// devlink-info document). An empty version is not told.
struct FirmwareVersions {
  std::string name;
  std::string running;    // what works now
  std::string stored;     // what the flash holds, which takes effect at the next activation
  bool isErased = false;  // the driver tells that the flash holds none: it was not written whole

  [[nodiscard]] bool tellsStored() const { return isErased || !stored.empty(); }

  friend bool operator==(const FirmwareVersions&, const FirmwareVersions&) = default;
};

// How much of an adapter is looked at.
enum class OutlineDepth {
  Description,  // what takes no look at its flash: not components, flashBytes and flashDefect
  Flash,        // those, too
};

// What is empty is not known.
struct AdapterListing {
  AdapterKind kind = AdapterKind::Virtual;
  // "0000:03:00"
  std::string pci;
  std::string name;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  // Of a kernel adapter; 0 where there is none.
  std::uint16_t subsystemVendor = 0;
  std::uint16_t subsystemDevice = 0;
  std::vector<AdapterPort> ports;
  std::vector<AdapterComponent> components;
  // Why the flash holds no valid image chain; empty when it holds one or is blank, and where it
  // cannot be read.
  std::string flashDefect;
  std::size_t flashBytes = 0;
  bool isUpdatable = false;

  // Of a virtual adapter.
  // Bytes per second, 0 for no limit.
  std::uint64_t writeRate = 0;
  std::uint32_t capabilityWord = 0;

  // Of a kernel adapter.
  std::string driver;
  std::string partNumber;
  std::string serialNumber;
  std::vector<FirmwareVersions> versions;  // in the driver's order
  // Why its firmware cannot be replaced; empty where it can.
  std::string whyNotUpdatable;
  // Its flash is being written, and all of this is what was last known.
  bool isBeingWritten = false;
  // What a person should know beside: "not readable without root: its option ROM".
  std::vector<std::string> notes;

  friend bool operator==(const AdapterListing&, const AdapterListing&) = default;
};

// Something that is not listed as an adapter, or in which something is wrong, and why.
struct AdapterProblem {
  std::string place;  // "/var/lib/orvex/adapters/0000-03-00", "0000:03:00"
  std::string text;
  std::string advice;  // what to do: "repair the folder, or move it out of the directory"
};

struct AdapterList {
  // Ordered by PCI address.
  std::vector<AdapterListing> adapters;
  std::vector<AdapterProblem> problems;
};

// What came of the wish that stored firmware takes effect.
struct Activation {
  bool isActive = false;  // it has
  // What has happened, or what it takes: "reboot the machine".
  std::string text;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_ADAPTERLISTING_H_
