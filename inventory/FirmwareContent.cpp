#include "inventory/FirmwareContent.h"

#include <algorithm>

namespace inventory {

std::vector<utils::FirmwareVersionInfo> findFirstOfEachType(
    const std::vector<ma::FlashImageInfo>& images) {
  std::vector<utils::FirmwareVersionInfo> firmware;
  for (const ma::FlashImageInfo& image : images) {
    const auto isOfType = [&image](const utils::FirmwareVersionInfo& known) {
      return known.type == image.firmware.type;
    };
    if (std::none_of(firmware.begin(), firmware.end(), isOfType)) {
      firmware.push_back(image.firmware);
    }
  }
  return firmware;
}

std::string describeContent(std::span<const std::uint8_t> content) {
  std::vector<ma::FlashImageInfo> images;
  // What is wrong with other content is told where it is refused.
  static_cast<void>(
      ma::describeFlashImage(content.data(), static_cast<std::uint32_t>(content.size()), images));
  std::string text;
  for (const utils::FirmwareVersionInfo& image : findFirstOfEachType(images)) {
    if (image.type != utils::FirmwareType::None) {
      text += (text.empty() ? "" : ", ") + std::string(utils::firmwareTypeName(image.type)) + " " +
              image.version.toString();
    }
  }
  return text;
}

}  // namespace inventory
