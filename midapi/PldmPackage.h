// Firmware update packages of PLDM (DSP0267, package header formats 1 to 4): for which devices the
// components are and where in the file they lie.
//
// Pure functions on bytes: no I/O, no shared state, and no read outside the bytes they are given,
// whatever those hold. They throw nothing but std::bad_alloc. Their time is linear in the bytes
// (sorting the components aside), and what they return is some MiB at the most, since a header has
// at most 64 KiB; components are not copied.
//
// All texts are UTF-8 and fit for a terminal (see midapi/ByteText.h).

#ifndef ORVEX_MIDAPI_PLDMPACKAGE_H_
#define ORVEX_MIDAPI_PLDMPACKAGE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "midapi/FieldDefect.h"
#include "midapi/PldmTime.h"

namespace ma {

// The kinds of descriptors that this library knows; a package may have others.
enum class PldmDescriptorType : std::uint16_t {
  PciVendor = 0x0000,
  IanaEnterprise = 0x0001,
  Uuid = 0x0002,
  PnpVendor = 0x0003,
  AcpiVendor = 0x0004,
  PciDevice = 0x0100,
  PciSubsystemVendor = 0x0101,
  PciSubsystemDevice = 0x0102,
  PciRevision = 0x0103,
  PnpProduct = 0x0104,
  AcpiProduct = 0x0105,
  VendorDefined = 0xFFFF,
};

// One thing that a device says of itself.
struct PldmDescriptor {
  PldmDescriptorType type = PldmDescriptorType::PciVendor;
  std::string title;  // of a vendor-defined one
  std::vector<std::uint8_t> data;

  // Returns the data as a little-endian number of at most four bytes; 0 for more.
  [[nodiscard]] std::uint32_t toNumber() const;
};

// A device that components of the package are for: the one that is updated, or one behind it
// ("downstream", formats 2 and up).
struct PldmRecord {
  std::uint32_t optionFlags = 0;
  std::vector<PldmDescriptor> descriptors;
  // Indexes of the package's components that the device takes, ascending.
  std::vector<std::size_t> components;
  // The version of those together; a downstream record has none.
  std::string setVersion;
  // Of a downstream record: from which version on its device can activate by itself.
  std::string minVersion;
  std::optional<std::uint32_t> minVersionStamp;
  std::vector<std::uint8_t> packageData;
  std::vector<std::uint8_t> referenceManifest;  // format 4

  // Returns whether the other components are to be written after one that fails. Of a downstream
  // record the flag means something else.
  [[nodiscard]] bool goesOnAfterFailure() const { return (optionFlags & 1) != 0; }
};

// One image in the package.
struct PldmComponent {
  std::uint16_t classification = 0;
  std::uint16_t identifier = 0;
  std::uint32_t comparisonStamp = 0;
  std::uint16_t options = 0;
  std::uint16_t activation = 0;  // bits, see describeActivation in midapi/PldmNames.h
  // Position in the file and size, both in bytes: within it, behind the header, apart from all
  // other components, and not empty.
  std::size_t location = 0;
  std::size_t size = 0;
  std::string version;
  std::vector<std::uint8_t> opaqueData;  // formats 3 and up

  [[nodiscard]] bool isForced() const { return (options & 1) != 0; }
  // Returns whether the comparison stamp tells which of two versions is older.
  [[nodiscard]] bool hasStamp() const { return (options & 2) != 0; }
};

// What parsePldmPackage found. With a defect the rest is empty.
struct PldmPackage {
  std::array<std::uint8_t, 16> identifier{};
  std::uint8_t format = 0;  // 1 to 4
  std::optional<PldmTime> releaseTime;
  std::string version;
  std::vector<PldmRecord> devices;
  std::vector<PldmRecord> downstreamDevices;
  std::vector<PldmComponent> components;
  // Where the checksums end; components lie behind it.
  std::size_t headerEnd = 0;
  std::uint32_t headerChecksum = 0;
  // Of all bytes from headerEnd on; format 4. The other formats have no checksum over components.
  std::optional<std::uint32_t> payloadChecksum;
  std::optional<FieldDefect> defect;

  [[nodiscard]] bool isValid() const { return !defect.has_value(); }
};

// Returns whether the bytes begin as a package of one of the formats does, sound or not.
[[nodiscard]] bool isPldmPackage(std::span<const std::uint8_t> bytes);

// Reads and checks a whole package: every field's bounds, checksums (the header's first, so that a
// damaged file is called that), and that components lie behind the header, within the file and
// apart from each other. Bytes between and behind components are not looked at.
//
// Each format has an identifier of its own; the first one's is taken with the others, too, since
// packages of all formats are made with it.
[[nodiscard]] PldmPackage parsePldmPackage(std::span<const std::uint8_t> bytes);

// Returns why the kernel's own reader of packages (lib/pldmfw, as of Linux 6.1) refuses a package
// that is valid; empty where it takes it.
[[nodiscard]] std::string kernelRefusalOf(const PldmPackage& package);

}  // namespace ma

#endif  // ORVEX_MIDAPI_PLDMPACKAGE_H_
