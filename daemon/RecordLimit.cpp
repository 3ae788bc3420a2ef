#include "daemon/RecordLimit.h"

namespace quorveld {

std::string describeRest(std::uint64_t count, std::chrono::seconds time) {
  return "... and " + std::to_string(count) + " more of these in " + std::to_string(time.count()) +
         " s";
}

}  // namespace quorveld
