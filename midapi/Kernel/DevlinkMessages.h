// What is said to the kernel's devlink, and what it answers: generic netlink messages as bytes.
//
// Pure: no socket. The readers take whatever datagram they are given, read nothing outside of it,
// and pass over what they do not know; texts come out fit for a terminal (see midapi/ByteText.h).
// They throw nothing but std::bad_alloc; what makes requests throws std::length_error, too, where a
// name is far longer than the kernel takes. Commands and attributes are those of linux/devlink.h
// and linux/genetlink.h.

#ifndef ORVEX_MIDAPI_KERNEL_DEVLINKMESSAGES_H_
#define ORVEX_MIDAPI_KERNEL_DEVLINKMESSAGES_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "midapi/AdapterId.h"

namespace ma {

using NetlinkBytes = std::span<const std::uint8_t>;

// By which numbers the running kernel knows devlink: they differ from boot to boot.
struct DevlinkFamily {
  std::uint16_t id = 0;
  std::uint32_t configGroup = 0;  // to which the progress of a flash is told; 0 where there is none
};

// The kernel's verdict on a request.
struct NetlinkAck {
  std::int32_t error = 0;  // 0, or an errno value
  std::string text;        // the driver's own words; often none
  bool isLost = false;     // the request was taken, and what came of it is not known
};

// A version under its standard name ("fw.undi", see the kernel's devlink-info document).
struct NamedVersion {
  std::string name;
  std::string value;

  friend bool operator==(const NamedVersion&, const NamedVersion&) = default;
};

struct DevlinkInfo {
  std::string driver;
  std::string serialNumber;
  std::string boardSerialNumber;
  std::vector<NamedVersion> fixed;    // of the hardware
  std::vector<NamedVersion> running;  // what works now
  std::vector<NamedVersion> stored;   // what takes effect at the next activation
};

// One message about a flash of a device. It does not say who flashes.
struct DevlinkFlashEvent {
  enum class Kind { Begin, Status, End };

  Kind kind = Kind::Status;
  std::string device;     // "0000:03:00.0"
  std::string text;       // "Flashing"
  std::string component;  // empty where the driver names none
  std::uint64_t done = 0;
  std::uint64_t total = 0;    // bytes; 0 where the text is no progress
  std::uint64_t timeout = 0;  // seconds that the step may take; 0 where none is told
};

// Requests. Each asks for an acknowledgement; `sequence` tells its answers from others.
[[nodiscard]] std::vector<std::uint8_t> makeFamilyRequest(std::uint32_t sequence);
[[nodiscard]] std::vector<std::uint8_t> makeInfoRequest(const DevlinkFamily& family,
                                                        const PortId& device,
                                                        std::uint32_t sequence);
// `file` is a name below the kernel's firmware folder. An empty component is all that it holds.
[[nodiscard]] std::vector<std::uint8_t> makeFlashRequest(const DevlinkFamily& family,
                                                         const PortId& device,
                                                         const std::string& file,
                                                         const std::string& component,
                                                         std::uint32_t sequence);
// Has the driver activate stored firmware (devlink reload, action fw_activate).
[[nodiscard]] std::vector<std::uint8_t> makeActivateRequest(const DevlinkFamily& family,
                                                            const PortId& device,
                                                            std::uint32_t sequence);

// Return what a datagram says in answer to a request; nothing where it does not answer that.
[[nodiscard]] std::optional<NetlinkAck> findAck(NetlinkBytes datagram, std::uint32_t sequence);
[[nodiscard]] std::optional<DevlinkFamily> findFamily(NetlinkBytes datagram,
                                                      std::uint32_t sequence);
[[nodiscard]] std::optional<DevlinkInfo> findInfo(NetlinkBytes datagram,
                                                  const DevlinkFamily& family,
                                                  std::uint32_t sequence);

// Returns what a datagram of the group `config` tells about flashes of PCI devices, in order.
[[nodiscard]] std::vector<DevlinkFlashEvent> findFlashEvents(NetlinkBytes datagram,
                                                             const DevlinkFamily& family);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_DEVLINKMESSAGES_H_
