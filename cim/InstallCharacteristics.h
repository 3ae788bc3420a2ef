// What an installation takes (DMTF CIM_SoftwareInstallationService, InstallCharacteristics of
// CheckSoftwareIdentity). Constant data.

#ifndef ORVEX_CIM_INSTALLCHARACTERISTICS_H_
#define ORVEX_CIM_INSTALLCHARACTERISTICS_H_

#include <cstdint>

namespace cim {

enum InstallCharacteristic : std::uint16_t {
  kTargetAutomaticReset = 2,
  kSystemAutomaticReset = 3,
  kSeparateTargetResetRequired = 4,
  kSeparateSystemResetRequired = 5,
  kManualRebootRequired = 6,
  kNoRebootRequired = 7,
  kUserInterventionRecommended = 8,
  kMayBeAddedToCollection = 9,
};

}  // namespace cim

#endif  // ORVEX_CIM_INSTALLCHARACTERISTICS_H_
