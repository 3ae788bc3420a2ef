// The checks of an image file against an adapter, the image that is to be written, and what that
// would change.
//
// Pure: works on parsed chains and on what a back end knows of the adapter. Throws nothing but
// std::bad_alloc.

#ifndef ORVEX_MIDAPI_IMAGEPREPARATION_H_
#define ORVEX_MIDAPI_IMAGEPREPARATION_H_

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/FlashTypes.h"
#include "midapi/OptionRom.h"

namespace ma {

// What decides whether an image is for an adapter.
struct AdapterFacts {
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  bool isUpdatable = false;
};

// Returns whether the library counts an image as firmware of the adapter: it is for its vendor and
// device and of a known type.
[[nodiscard]] bool isFirmwareOf(const AdapterFacts& adapter, const OptionRomImage& image);

// Returns the firmware of the adapter in a chain, in its order.
[[nodiscard]] std::vector<utils::FirmwareVersionInfo> firmwareOf(const AdapterFacts& adapter,
                                                                 const RomChain& chain);

// Returns the status of the checks that need no look into the flash: NotForAdapter, NotUpdatable,
// or Ok. `file` is a valid chain.
[[nodiscard]] PrepareStatus checkAdapter(const RomChain& file, const AdapterFacts& adapter);

// An image of a file that is older than the one of its type that is installed.
struct OlderImage {
  utils::FirmwareType type = utils::FirmwareType::None;
  utils::FirmwareVersion version;
  utils::FirmwareVersion installed;
};

// Which images of a file are to be written, in file order, and Ok, TypesDiffer or Downgrade.
struct ImageSelection {
  PrepareStatus status = PrepareStatus::Ok;
  std::vector<const OptionRomImage*> images;
  std::optional<OlderImage> older;  // of a Downgrade: the first one that makes it so
};

// Selects the images of the requested types that are for the adapter, or all images when no types
// are requested, and compares types and versions with those in the flash. An installed chain with a
// defect holds nothing. Where the flash or the file has several images of one type, the first is
// compared with the first, and so on; surplus images with the last installed one.
// The selection points into `file`.
[[nodiscard]] ImageSelection selectImages(const RomChain& file, const RomChain& installed,
                                          const AdapterFacts& adapter,
                                          const std::vector<utils::FirmwareType>& types);

// Copies the selected images to the start of `buffer`, with the last-image bit on the last of them.
// Returns the number of bytes filled; nullopt when the buffer is too small or the byte sum of an
// image cannot be put right.
[[nodiscard]] std::optional<std::uint32_t> copyImages(
    RomBytes file, const std::vector<const OptionRomImage*>& images,
    std::span<std::uint8_t> buffer);

// Compares an image that may be installed with what the flash holds: SameContent, SameVersion or
// Newer.
[[nodiscard]] ImageComparison compareImages(const AdapterFacts& adapter, RomBytes image,
                                            RomBytes flash);

// Returns what a file is to an adapter that the checks refuse it for.
[[nodiscard]] ImageComparison comparisonOf(PrepareStatus refusal);

}  // namespace ma

#endif  // ORVEX_MIDAPI_IMAGEPREPARATION_H_
