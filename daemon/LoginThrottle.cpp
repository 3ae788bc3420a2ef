#include "daemon/LoginThrottle.h"

#include <algorithm>
#include <utility>

#include "http/PeerGroup.h"

namespace quorveld {

std::optional<std::chrono::milliseconds> LoginThrottle::findRefusal(const std::string& address) {
  const auto found = m_failures.find(http::toPeerGroup(address));
  if (found == m_failures.end() || m_now() >= found->second.last + found->second.delay) {
    return std::nullopt;
  }
  ++found->second.unchecked;
  return found->second.delay;
}

std::chrono::milliseconds LoginThrottle::addFailure(const std::string& address) {
  const Clock::time_point now = m_now();
  std::erase_if(m_failures,
                [now](const auto& entry) { return now >= entry.second.last + kMemory; });
  const bool isFull = m_failures.size() >= kMostNetworks;
  const std::string network = http::toPeerGroup(address);
  if (isFull && !m_failures.contains(network)) {
    forgetTheQuietest();
  }
  const auto [entry, isNew] = m_failures.try_emplace(network);
  Failures& failures = entry->second;
  if (isNew) {
    failures.delay = isFull ? kLongestDelay : kFirstDelay;
  } else {
    failures.delay = std::min(failures.delay * 2, kLongestDelay);
  }
  failures.last = now;
  return failures.delay;
}

unsigned LoginThrottle::takeUnchecked(const std::string& address) {
  const auto found = m_failures.find(http::toPeerGroup(address));
  return found == m_failures.end() ? 0 : std::exchange(found->second.unchecked, 0);
}

void LoginThrottle::forgetTheQuietest() {
  m_failures.erase(std::min_element(
      m_failures.begin(), m_failures.end(),
      [](const auto& one, const auto& other) { return one.second.last < other.second.last; }));
}

}  // namespace quorveld
