#include "midapi/WriteProgress.h"

#include <algorithm>
#include <utility>

namespace ma {

void WriteProgress::start() {
  m_percent.store(0);
  remark({});
}

void WriteProgress::advance(std::uint64_t done, std::uint64_t total) {
  const auto percent = static_cast<std::uint32_t>(done * kComplete / total);
  m_percent.store(std::max(m_percent.load(), std::min(percent, kComplete - 1)));
}

void WriteProgress::remark(std::string text) {
  const platform::Lock lock(m_mutex);
  m_remark = std::move(text);
}

std::string WriteProgress::remark() const {
  const platform::Lock lock(m_mutex);
  return m_remark;
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

std::string WriteProgressTable::remark(const AdapterAddress& adapter) const {
  const platform::Lock lock(m_mutex);
  const auto found = m_progress.find(adapter);
  return found == m_progress.end() ? "" : found->second.remark();
}

}  // namespace ma
