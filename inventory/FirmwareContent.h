// What the content of a firmware file is, in few words.

#ifndef ORVEX_INVENTORY_FIRMWARECONTENT_H_
#define ORVEX_INVENTORY_FIRMWARECONTENT_H_

#include <cstdint>
#include <span>
#include <string>

namespace inventory {

// Returns the types of the images that are known, with their versions: "IMG_PXE 0.1, IMG_UEFI 1.2".
// Of a package, its version before them: "2026.11 (IMG_UEFI 1.2)". An empty text for content that
// is no firmware file, or has none of these.
[[nodiscard]] std::string describeContent(std::span<const std::uint8_t> content);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWARECONTENT_H_
