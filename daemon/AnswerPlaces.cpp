#include "daemon/AnswerPlaces.h"

namespace quorveld {

bool AnswerPlaces::take(const std::string& peer, bool isTrusted) {
  const platform::Lock lock(m_mutex);
  const auto found = m_takenBy.find(peer);
  const unsigned own = found == m_takenBy.end() ? 0 : found->second;
  if (isTrusted ? m_taken >= kMost + kKept : own + m_taken >= kMost) {
    return false;
  }
  ++m_takenBy[peer];
  ++m_taken;
  return true;
}

void AnswerPlaces::give(const std::string& peer) noexcept {
  const platform::Lock lock(m_mutex);
  --m_taken;
  const auto found = m_takenBy.find(peer);
  if (--found->second == 0) {
    m_takenBy.erase(found);
  }
}

}  // namespace quorveld
