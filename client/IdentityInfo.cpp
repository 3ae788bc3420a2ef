#include "client/IdentityInfo.h"

#include <algorithm>
#include <cstddef>

namespace client {

std::vector<std::string> findIdentityInfo(const InstanceSnapshot& software, std::string_view type) {
  using Texts = std::vector<std::string>;
  const auto types = software.value<Texts>("IdentityInfoType");
  const auto values = software.value<Texts>("IdentityInfoValue");
  Texts found;
  for (std::size_t i = 0; i < std::min(types.size(), values.size()); ++i) {
    if (types[i] == type) {
      found.push_back(values[i]);
    }
  }
  return found;
}

}  // namespace client
