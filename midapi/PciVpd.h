// The Vital Product Data of a PCI function (PCI 3.0, appendix I): what its maker wrote into it.
//
// Pure functions on bytes: no I/O, no shared state, no read outside the bytes they are given. They
// throw nothing but std::bad_alloc, and are linear in the bytes, of which a function has 32 KiB at
// the most.

#ifndef ORVEX_MIDAPI_PCIVPD_H_
#define ORVEX_MIDAPI_PCIVPD_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "midapi/FieldDefect.h"

namespace ma {

// Whether the bytes from the start to the checksum add up. Many adapters have none.
enum class VpdChecksum { Missing, Right, Wrong };

// One field of the read-only or the read-write area.
struct VpdField {
  std::string keyword;  // two characters, "PN"
  std::string text;     // UTF-8 and fit for a terminal (see midapi/ByteText.h)
};

// What parsePciVpd found. With a defect it holds what was read before that.
struct PciVpd {
  std::string productName;
  // In their order; the checksum (RV) and what is left to write (RW) are none of them.
  std::vector<VpdField> readOnly;
  std::vector<VpdField> readWrite;
  VpdChecksum checksum = VpdChecksum::Missing;
  std::optional<FieldDefect> defect;

  [[nodiscard]] bool isValid() const { return !defect.has_value(); }

  // Return the text of the read-only area's first field of the keyword; empty where there is none.
  [[nodiscard]] std::string_view field(std::string_view keyword) const;
  [[nodiscard]] std::string_view partNumber() const { return field("PN"); }
  [[nodiscard]] std::string_view serialNumber() const { return field("SN"); }
  [[nodiscard]] std::string_view engineeringChange() const { return field("EC"); }
  [[nodiscard]] std::string_view manufactureId() const { return field("MN"); }
};

// Reads the list of resources up to its end tag, which it must have; what follows is not looked at.
// A wrong checksum is a defect; what was read stays, for a damaged VPD still tells a person most of
// what it says. Resources of other types are passed over.
[[nodiscard]] PciVpd parsePciVpd(std::span<const std::uint8_t> bytes);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PCIVPD_H_
