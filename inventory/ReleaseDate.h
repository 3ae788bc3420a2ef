// When a firmware file was released, as a value of CIM.

#ifndef ORVEX_INVENTORY_RELEASEDATE_H_
#define ORVEX_INVENTORY_RELEASEDATE_H_

#include <optional>
#include <string_view>

#include "Utils/Datetime.h"

namespace inventory {

// Reads the form of RFC 3339, "2026-11-21T18:04:05+01:00", with or without microseconds. Returns
// nothing for any other text.
[[nodiscard]] std::optional<utils::Datetime> readReleaseDate(std::string_view text);

}  // namespace inventory

#endif  // ORVEX_INVENTORY_RELEASEDATE_H_
