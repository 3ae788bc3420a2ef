// The served classes that a client asks for by name.

#ifndef ORVEX_CLIENT_CLASSNAMES_H_
#define ORVEX_CLIENT_CLASSNAMES_H_

namespace client {

inline constexpr const char* kPortClass = "Orvex_EthernetPort";
inline constexpr const char* kAdapterClass = "Orvex_PortController";
inline constexpr const char* kIdentityClass = "Orvex_SoftwareIdentity";
// What a software identity is to an adapter.
inline constexpr const char* kComparisonClass = "Orvex_ElementSoftwareIdentity";
inline constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
inline constexpr const char* kJobClass = "Orvex_ConcreteJob";

}  // namespace client

#endif  // ORVEX_CLIENT_CLASSNAMES_H_
