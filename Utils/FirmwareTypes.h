// The vocabulary of adapter firmware that the agents and the flash library share: image types,
// versions, PCI locations and adapter identifiers. Plain values; no operation here throws anything
// but std::bad_alloc, and none locks.

#ifndef ORVEX_UTILS_FIRMWARETYPES_H_
#define ORVEX_UTILS_FIRMWARETYPES_H_

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace utils {

// The type of a firmware image. None is the number of the empty name; it selects no image.
enum class FirmwareType : std::int32_t {
  None = 0,
  Clp = 1,
  Iscsi = 2,
  Pxe = 3,
  Uefi = 4,
  Fcoe = 5
};

// The names under which clients speak of the types, indexed by their numbers.
inline constexpr std::array<std::string_view, 6> kFirmwareTypeNames = {
    "", "IMG_CLP", "IMG_iSCSI", "IMG_PXE", "IMG_UEFI", "IMG_FCoE"};

// Returns the name of `type`; empty for None.
constexpr std::string_view firmwareTypeName(FirmwareType type) {
  return kFirmwareTypeNames[static_cast<std::size_t>(type)];
}

// The version of a firmware image: the two bytes of the code revision level in its PCI Data
// Structure (PCI Firmware Specification 3.3, 5.1.2), ordered as a number.
struct FirmwareVersion {
  std::uint8_t majorRevision = 0;
  std::uint8_t minorRevision = 0;

  // Splits a code revision level: the high byte is the major part.
  static constexpr FirmwareVersion fromCodeRevision(std::uint16_t codeRevision) {
    return {static_cast<std::uint8_t>(codeRevision >> 8),
            static_cast<std::uint8_t>(codeRevision & 0xFF)};
  }

  // Returns "major.minor", both decimal.
  std::string toString() const {
    return std::to_string(majorRevision) + "." + std::to_string(minorRevision);
  }

  friend constexpr auto operator<=>(const FirmwareVersion&, const FirmwareVersion&) = default;
};

// One firmware component that is installed on an adapter.
struct FirmwareVersionInfo {
  FirmwareType type = FirmwareType::None;
  FirmwareVersion version;

  friend constexpr bool operator==(const FirmwareVersionInfo&,
                                   const FirmwareVersionInfo&) = default;
};

// Where an adapter port sits on its PCI segment.
struct PCIAddr {
  std::uint8_t bus = 0;
  std::uint8_t device = 0;
  std::uint8_t function = 0;

  friend constexpr bool operator==(const PCIAddr&, const PCIAddr&) = default;
};

using StringArray = std::vector<std::string>;

}  // namespace utils

#endif  // ORVEX_UTILS_FIRMWARETYPES_H_
