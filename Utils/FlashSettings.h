// Which adapters the flash library manages, and how: what the settings say, handed to it by whoever
// reads them (see ma::useSettings). A plain value.

#ifndef ORVEX_UTILS_FLASHSETTINGS_H_
#define ORVEX_UTILS_FLASHSETTINGS_H_

#include <string>
#include <vector>

namespace utils {

struct FlashSettings {
  static constexpr const char* kDefaultFirmwareFolder = "/lib/firmware";

  // Both kinds where the platform has them; Windows has virtual ones alone.
  bool hasKernelAdapters = true;
  bool hasVirtualAdapters = true;
  // Drivers ("mlx5_core") whose own check of a firmware file is trusted where the file does not say
  // which devices it is for.
  std::vector<std::string> trustedDrivers;
  // From which the kernel takes firmware.
  std::string firmwareFolder = kDefaultFirmwareFolder;

  friend bool operator==(const FlashSettings&, const FlashSettings&) = default;
};

}  // namespace utils

#endif  // ORVEX_UTILS_FLASHSETTINGS_H_
