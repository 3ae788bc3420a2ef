// The values of DMTF CIM_ElementSoftwareIdentity that are used here. Constant data.

#ifndef ORVEX_CIM_ELEMENTSOFTWARE_H_
#define ORVEX_CIM_ELEMENTSOFTWARE_H_

#include <cstdint>

namespace cim {

// ElementSoftwareStatus: what the software is to the element.
inline constexpr std::uint16_t kSoftwareCurrent = 2;
inline constexpr std::uint16_t kSoftwareNext = 3;
inline constexpr std::uint16_t kSoftwareInstalled = 6;
inline constexpr std::uint16_t kSoftwareAvailable = 8;

// UpgradeCondition: who may replace it.
inline constexpr std::uint16_t kOwnerUpgradeable = 3;
inline constexpr std::uint16_t kNotUpgradeable = 5;

}  // namespace cim

#endif  // ORVEX_CIM_ELEMENTSOFTWARE_H_
