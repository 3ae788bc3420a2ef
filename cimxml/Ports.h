// The ports that are registered for CIM-XML (DSP0200), where nobody names another.

#ifndef ORVEX_CIMXML_PORTS_H_
#define ORVEX_CIMXML_PORTS_H_

#include <cstdint>

namespace cimxml {

inline constexpr std::uint16_t kHttpPort = 5988;
inline constexpr std::uint16_t kHttpsPort = 5989;

}  // namespace cimxml

#endif  // ORVEX_CIMXML_PORTS_H_
