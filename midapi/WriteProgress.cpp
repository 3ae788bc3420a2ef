#include "midapi/WriteProgress.h"

#include <algorithm>

namespace ma {

void WriteProgress::advance(std::uint64_t done, std::uint64_t total) {
  const auto percent = static_cast<std::uint32_t>(done * kComplete / total);
  m_percent.store(std::max(m_percent.load(), std::min(percent, kComplete - 1)));
}

WriteProgress& WriteProgressTable::start(const AdapterAddress& adapter) {
  const platform::Lock lock(m_mutex);
  WriteProgress& progress = m_progress[adapter];
  progress.start();
  return progress;
}

std::uint32_t WriteProgressTable::percent(const AdapterAddress& adapter) const {
  const platform::Lock lock(m_mutex);
  const auto found = m_progress.find(adapter);
  return found == m_progress.end() ? 0 : found->second.percent();
}

}  // namespace ma
