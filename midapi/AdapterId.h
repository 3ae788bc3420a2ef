// The names of adapters and of their ports.
//
// An adapter is a PCI device, "dddd:bb:ss" (segment, bus, device); each of its functions is a port,
// "dddd:bb:ss.f". The canonical text is lower-case hexadecimal of exactly these widths, a device
// below 0x20 and a function below 8. Plain values; nothing here locks or throws anything but
// std::bad_alloc.

#ifndef ORVEX_MIDAPI_ADAPTERID_H_
#define ORVEX_MIDAPI_ADAPTERID_H_

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "midapi/Export.h"

namespace ma {

inline constexpr std::uint8_t kMaxPorts = 8;

struct AdapterAddress {
  std::uint16_t segment = 0;
  std::uint8_t bus = 0;
  std::uint8_t device = 0;

  friend constexpr auto operator<=>(const AdapterAddress&, const AdapterAddress&) = default;
};

struct PortId {
  AdapterAddress adapter;
  std::uint8_t function = 0;

  friend constexpr auto operator<=>(const PortId&, const PortId&) = default;
};

// Reads "0000:03:00" or "0000:03:00.0". Upper-case digits are accepted, for what people type;
// nullopt for anything else.
[[nodiscard]] ORVEX_MIDAPI_API std::optional<AdapterAddress> parseAdapterAddress(
    std::string_view text);
[[nodiscard]] ORVEX_MIDAPI_API std::optional<PortId> parsePortId(std::string_view text);

// Reads a port's identifier as programs exchange it: nullopt when it is not the canonical text.
[[nodiscard]] ORVEX_MIDAPI_API std::optional<PortId> parseCanonicalPortId(std::string_view text);

// Returns the canonical text.
[[nodiscard]] ORVEX_MIDAPI_API std::string toString(const AdapterAddress& address);
[[nodiscard]] ORVEX_MIDAPI_API std::string toString(const PortId& port);

// The name of an adapter's folder, "0000-03-00", and back; nullopt for any other name.
[[nodiscard]] ORVEX_MIDAPI_API std::string toFolderName(const AdapterAddress& address);
[[nodiscard]] ORVEX_MIDAPI_API std::optional<AdapterAddress> parseFolderName(std::string_view name);

}  // namespace ma

#endif  // ORVEX_MIDAPI_ADAPTERID_H_
