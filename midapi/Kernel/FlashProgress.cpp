#include "midapi/Kernel/FlashProgress.h"

#include <algorithm>

namespace ma {
namespace {

// No flash is so large: a driver that tells more bytes tells nonsense.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 40;

}  // namespace

void FlashProgress::note(const DevlinkFlashEvent& event) {
  if (event.kind != DevlinkFlashEvent::Kind::Status || event.total == 0 ||
      event.total > kMostBytes) {
    return;
  }
  const bool isComplete = m_ofComponent != 0 && m_done == m_ofComponent;
  if (event.component != m_component || (isComplete && event.done == 0)) {
    // A driver need not tell the end of a component; that another one begins does.
    m_finished += std::max(m_done, m_ofComponent);
    m_component = event.component;
    m_done = 0;
  }
  m_done = std::max(m_done, std::min(event.done, event.total));
  m_ofComponent = std::max(event.total, m_done);
}

std::uint64_t FlashProgress::total() const {
  return std::max(m_expected, m_finished + m_ofComponent);
}

}  // namespace ma
