#include "inventory/FirmwareContent.h"

#include "midapi/FirmwareDescription.h"

namespace inventory {

std::string describeContent(std::span<const std::uint8_t> content) {
  // What is wrong with other content is told where it is refused.
  const ma::FirmwareDescription file = ma::describeFirmware(content);
  std::string types;
  for (const utils::FirmwareVersionInfo& image : file.images) {
    types += (types.empty() ? "" : ", ") + std::string(utils::firmwareTypeName(image.type)) + " " +
             image.version.toString();
  }
  if (file.format == ma::FirmwareFormat::OptionRom || file.version.empty()) {
    return types;
  }
  return types.empty() ? file.version : file.version + " (" + types + ")";
}

}  // namespace inventory
