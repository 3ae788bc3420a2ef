// How the command line writes what is known of adapters and of firmware: words and numbers. Any
// thread.

#ifndef ORVEX_CLI_ADAPTERWORDS_H_
#define ORVEX_CLI_ADAPTERWORDS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "client/Value.h"
#include "midapi/AdapterListing.h"
#include "midapi/FlashTypes.h"

namespace cli {

[[nodiscard]] std::string_view bootTypeName(ma::BootType type);

// Returns what an update would mean, in the words in which the inventory tells it: "newer".
[[nodiscard]] std::string_view comparisonName(ma::ImageComparison comparison);

// Returns a PCI id as four hexadecimal digits.
[[nodiscard]] std::string toIdText(std::uint16_t id);
// Returns "1af4:1041".
[[nodiscard]] std::string toDeviceText(const ma::AdapterListing& adapter);
[[nodiscard]] std::string toDigestText(std::uint64_t digest);

// Returns the images of a flash: "IMG_PXE 1.0 (0123abcd), IMG_UEFI 2.0 (4567cdef)"; empty for none.
[[nodiscard]] std::string describeImages(const std::vector<ma::AdapterComponent>& components);

// Returns the running version, and the stored one where it is another: "fw.undi 1.0.0, stored
// 1.1.0".
[[nodiscard]] std::string describeVersions(const ma::FirmwareVersions& versions);

// Returns whether the flash holds another version than the one that works now.
[[nodiscard]] bool isWaiting(const ma::FirmwareVersions& versions);

// Returns a text of a document, NULL for an empty one.
[[nodiscard]] client::Value textOrNull(const std::string& text);

}  // namespace cli

#endif  // ORVEX_CLI_ADAPTERWORDS_H_
