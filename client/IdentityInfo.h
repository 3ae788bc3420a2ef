// What the software identities of the inventory say of themselves in pairs of type and value.

#ifndef ORVEX_CLIENT_IDENTITYINFO_H_
#define ORVEX_CLIENT_IDENTITYINFO_H_

#include <string>
#include <string_view>
#include <vector>

#include "client/Snapshot.h"

namespace client {

inline constexpr std::string_view kDeviceInfo = "Orvex:PCIDevice";
inline constexpr std::string_view kDigestInfo = "Orvex:Digest";

// Returns the values of the type, in their order.
[[nodiscard]] std::vector<std::string> findIdentityInfo(const InstanceSnapshot& software,
                                                        std::string_view type);

}  // namespace client

#endif  // ORVEX_CLIENT_IDENTITYINFO_H_
