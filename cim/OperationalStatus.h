// The value of OperationalStatus (DMTF CIM_ManagedSystemElement) that is used here. Constant data.

#ifndef ORVEX_CIM_OPERATIONALSTATUS_H_
#define ORVEX_CIM_OPERATIONALSTATUS_H_

#include <cstdint>

namespace cim {

inline constexpr std::uint16_t kOperationalStatusOk = 2;

}  // namespace cim

#endif  // ORVEX_CIM_OPERATIONALSTATUS_H_
