// What the content of a firmware file is, in few words.

#ifndef ORVEX_INVENTORY_FIRMWARECONTENT_H_
#define ORVEX_INVENTORY_FIRMWARECONTENT_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "midapi/MidApi.h"

namespace inventory {

// Returns the first image of each type, in the order of the file.
[[nodiscard]] std::vector<utils::FirmwareVersionInfo> findFirstOfEachType(
    const std::vector<ma::FlashImageInfo>& images);

// Returns the types of the images that are known, with their versions: "IMG_PXE 0.1, IMG_UEFI 1.2".
// An empty text for content that is no firmware file, or has none of these.
[[nodiscard]] std::string describeContent(std::span<const std::uint8_t> content);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWARECONTENT_H_
