#include "daemon/RecordLimit.h"

namespace quorveld {

std::string describeRest(std::uint64_t count, std::chrono::seconds period) {
  return "... and " + std::to_string(count) + " more of these in " +
         std::to_string(period.count()) + " s";
}

}  // namespace quorveld
