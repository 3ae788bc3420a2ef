// The values of EnabledState (DMTF CIM_EnabledLogicalElement) that are used here. Constant data.

#ifndef ORVEX_CIM_ENABLEDSTATE_H_
#define ORVEX_CIM_ENABLEDSTATE_H_

#include <cstdint>

namespace cim {

inline constexpr std::uint16_t kEnabled = 2;
inline constexpr std::uint16_t kDisabled = 3;
inline constexpr std::uint16_t kNotApplicable = 5;  // it cannot be enabled or disabled
inline constexpr std::uint16_t kEnabledButOffline = 6;
inline constexpr std::uint16_t kInTest = 7;

}  // namespace cim

#endif  // ORVEX_CIM_ENABLEDSTATE_H_
