// The values of the InstallOptions argument (DMTF CIM_SoftwareInstallationService).

#ifndef ORVEX_CIM_INSTALLOPTIONS_H_
#define ORVEX_CIM_INSTALLOPTIONS_H_

#include <algorithm>
#include <cstdint>
#include <vector>

namespace cim {

enum InstallOption : std::uint16_t {
  kDeferTargetReset = 2,
  kForceInstallation = 3,
  kInstall = 4,
  kUpdate = 5,
  kRepair = 6,
  kReboot = 7,
  kPassword = 8,
  kUninstall = 9,
  kLogOption = 10,
  kSilentMode = 11,
  kAdministrativeMode = 12,
  // The first vendor-specific value: the InstallOptionsValues entry at its position names the image
  // types to install.
  kTargetTypes = 32768,
};

[[nodiscard]] inline bool hasOption(const std::vector<std::uint16_t>& options,
                                    InstallOption wanted) {
  return std::find(options.begin(), options.end(), wanted) != options.end();
}

}  // namespace cim

#endif  // ORVEX_CIM_INSTALLOPTIONS_H_
