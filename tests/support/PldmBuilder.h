// Builds firmware update packages of PLDM (DSP0267, formats 1 to 4) for tests, sound or with chosen
// fields broken. tests/support/make-pldm-package makes the same of arguments, for shells.
//
// Shares no code with the library that reads them, but the names of fields.

#ifndef ORVEX_TESTS_SUPPORT_PLDMBUILDER_H_
#define ORVEX_TESTS_SUPPORT_PLDMBUILDER_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/RomBuilder.h"

namespace test {

// The numbers of the types of texts.
inline constexpr std::uint8_t kPldmUnknown = 0;
inline constexpr std::uint8_t kPldmAscii = 1;
inline constexpr std::uint8_t kPldmUtf8 = 2;
inline constexpr std::uint8_t kPldmUtf16 = 3;
inline constexpr std::uint8_t kPldmUtf16Le = 4;
inline constexpr std::uint8_t kPldmUtf16Be = 5;

// Bytes that are a text of some type.
struct PldmText {
  std::string bytes;
  std::uint8_t type = kPldmAscii;
};

// Whom components are for. Every setter returns the record itself.
class PldmDevice {
 public:
  PldmDevice() = default;
  PldmDevice(std::uint16_t vendor, std::uint16_t device);

  PldmDevice& subsystem(std::uint16_t vendor, std::uint16_t device);
  PldmDevice& descriptor(std::uint16_t type, Bytes data);
  PldmDevice& vendorDefined(PldmText title, Bytes data);
  // Indexes of components, of which the record has none unless they are named.
  PldmDevice& takes(std::vector<std::size_t> components);
  PldmDevice& options(std::uint32_t flags);
  // Of a downstream record it is the lowest version that activates by itself.
  PldmDevice& version(PldmText version);
  // Of a downstream record, with the option flag that says that it is there.
  PldmDevice& minVersionStamp(std::uint32_t stamp);
  PldmDevice& packageData(Bytes data);
  PldmDevice& manifest(Bytes data);  // format 4

 private:
  friend class PldmLayout;

  struct Descriptor {
    std::uint16_t type = 0;
    std::optional<PldmText> title;
    Bytes data;
  };

  std::vector<Descriptor> m_descriptors;
  std::vector<std::size_t> m_components;
  std::uint32_t m_options = 0;
  PldmText m_version = {"1.0", kPldmAscii};
  std::optional<std::uint32_t> m_stamp;
  Bytes m_packageData;
  Bytes m_manifest;
};

// What is written. Firmware of identifier 5 and version 1.0, activated by a reboot, unless
// something else is said.
class PldmImage {
 public:
  explicit PldmImage(Bytes content) : m_content(std::move(content)) {}

  PldmImage& identifier(std::uint16_t identifier);
  PldmImage& version(PldmText version);
  PldmImage& classification(std::uint16_t classification);
  PldmImage& stamp(std::uint32_t stamp);
  PldmImage& options(std::uint16_t options);
  PldmImage& activation(std::uint16_t activation);
  PldmImage& opaque(Bytes data);  // formats 3 and up

 private:
  friend class PldmLayout;

  Bytes m_content;
  std::uint16_t m_identifier = 5;
  PldmText m_version = {"1.0", kPldmAscii};
  std::uint16_t m_classification = 10;
  std::uint32_t m_stamp = 0xFFFFFFFF;
  std::uint16_t m_options = 0;
  std::uint16_t m_activation = 8;
  Bytes m_opaque;
};

// A package, and where each of its fields stands: under the names by which the library's defects
// call them ("devices[0].length"), and "components[0].content".
struct PldmFile {
  struct Field {
    std::size_t offset = 0;
    std::size_t size = 0;
  };

  Bytes bytes;
  std::map<std::string, Field> fields;

  // Throws std::out_of_range for a field that the package has not.
  [[nodiscard]] std::size_t offsetOf(const std::string& field) const {
    return fields.at(field).offset;
  }
};

// Released on 21 November 2026 at 18:04:05 UTC as version "2026.11", unless something else is said.
class PldmBuilder {
 public:
  explicit PldmBuilder(std::uint8_t format = 1) : m_format(format) {}

  PldmBuilder& version(PldmText version);
  PldmBuilder& releaseTime(Bytes time);
  PldmBuilder& add(const PldmDevice& device);
  PldmBuilder& addDownstream(const PldmDevice& device);  // formats 2 and up
  PldmBuilder& add(const PldmImage& image);
  // Bits for components in each record; as few as are needed by default.
  PldmBuilder& bitmapBits(std::size_t bits);
  // Takes the identifier of format 1, whatever the format is.
  PldmBuilder& withCommonIdentifier();
  // Leaves the payload's checksum out of the header size, in format 4.
  PldmBuilder& withSizeOfHeaderAlone();
  // Puts the bytes between the header and the first component, and between components.
  PldmBuilder& gap(Bytes gap);

  // Sets a number to another value, of which the field takes as many bytes as it has. Checksums are
  // made afterwards, so that the damage is the only one, except where one is the damage.
  PldmBuilder& breakField(const std::string& field, std::uint64_t value);

  // Throws std::invalid_argument for a field to break that the package has not.
  [[nodiscard]] PldmFile build() const;

 private:
  friend class PldmLayout;

  std::uint8_t m_format;
  PldmText m_version = {"2026.11", kPldmAscii};
  Bytes m_releaseTime = {0, 0, 0, 0, 0, 5, 4, 18, 21, 11, 0xEA, 0x07, 0};
  std::vector<PldmDevice> m_devices;
  std::vector<PldmDevice> m_downstream;
  std::vector<PldmImage> m_images;
  std::optional<std::size_t> m_bitmapBits;
  bool m_hasCommonIdentifier = false;
  bool m_hasSizeOfHeaderAlone = false;
  Bytes m_gap;
  std::vector<std::pair<std::string, std::uint64_t>> m_broken;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_PLDMBUILDER_H_
