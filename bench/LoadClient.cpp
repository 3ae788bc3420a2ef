#include "bench/LoadClient.h"

#include <algorithm>
#include <cmath>

namespace bench {

double LoadResult::perSecond() const {
  return time.count() > 0 ? static_cast<double>(answers) / time.count() : 0;
}

std::chrono::nanoseconds LoadResult::quantile(double share) const {
  if (latencies.empty()) {
    return std::chrono::nanoseconds(0);
  }
  const auto rank =
      static_cast<std::size_t>(std::ceil(share * static_cast<double>(latencies.size())));
  return latencies[std::clamp<std::size_t>(rank, 1, latencies.size()) - 1];
}

}  // namespace bench
