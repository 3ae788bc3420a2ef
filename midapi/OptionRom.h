// PCI Expansion ROM images and chains of them: what a flash holds and what an image file is.
//
// Pure functions on bytes: no I/O, no shared state, and no read outside the bytes they are given,
// whatever those hold. They throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_OPTIONROM_H_
#define ORVEX_MIDAPI_OPTIONROM_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"

namespace ma {

// The bytes of a ROM, or of one image in it.
using RomBytes = std::span<const std::uint8_t>;

// One image of a valid chain.
struct OptionRomImage {
  // Position and size in the chain, in bytes.
  std::size_t offset = 0;
  std::size_t length = 0;

  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::vector<std::uint16_t> deviceList;
  std::uint8_t codeType = 0;
  utils::FirmwareType type = utils::FirmwareType::None;
  utils::FirmwareVersion version;
  bool isLast = false;

  // From the image's start: its PCI Data Structure, and the end of all structures in its headers.
  std::size_t dataStructure = 0;
  std::size_t structuresEnd = 0;

  // Returns whether the image is for that device, by its own ids or by its device list.
  [[nodiscard]] bool isFor(std::uint16_t vendorId, std::uint16_t deviceId) const;
};

// Why a chain is not valid: the image in which it shows, the position of that image, and a reason.
struct RomDefect {
  std::size_t image = 0;
  std::size_t offset = 0;
  std::string reason;

  // Returns for example "image 1 at 0x12800: byte sum is 0x13, must be 0".
  [[nodiscard]] std::string toString() const;
};

// What parseRomChain found. With a defect there are no images and the length is 0.
struct RomChain {
  std::vector<OptionRomImage> images;
  // Bytes from the first image to the end of the last; what follows in the file is padding.
  std::size_t length = 0;
  std::optional<RomDefect> defect;

  [[nodiscard]] bool isValid() const { return !defect.has_value(); }
};

// Returns whether the bytes begin as a ROM does, sound or not.
[[nodiscard]] bool isOptionRom(RomBytes bytes);

// Reads and checks a whole chain: signatures, lengths, PCI Data Structures, byte sums, expansion
// headers, device lists, last-image bits, and that only padding follows the last image.
[[nodiscard]] RomChain parseRomChain(RomBytes bytes);

// Returns the sum of all bytes modulo 256.
[[nodiscard]] std::uint8_t byteSum(RomBytes bytes);

// Returns whether all bytes are 0x00 or all are 0xFF, as in erased flash; true for no bytes.
[[nodiscard]] bool isPadding(RomBytes bytes);

// Sets or clears the last-image bit of the image whose bytes are `bytes`, and puts its byte sum
// right. Returns false and changes nothing when no byte of the image is known to be free for that:
// a byte that may be code is never touched.
[[nodiscard]] bool setLastImageBit(std::span<std::uint8_t> bytes, const OptionRomImage& image,
                                   bool isLast);

}  // namespace ma

#endif  // ORVEX_MIDAPI_OPTIONROM_H_
