#include "cli/ProgressView.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "Utils/Format.h"
#include "Utils/Printable.h"

namespace cli {
namespace {

constexpr unsigned kComplete = 100;
constexpr unsigned kBarWidth = 20;
constexpr int kLineStep = 10;  // percent
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;

}  // namespace

std::string toClockText(std::chrono::seconds elapsed) {
  const std::int64_t seconds = elapsed.count();
  const auto part = [](std::int64_t value) { return static_cast<int>(value); };
  if (seconds >= kHour) {
    return utils::format("%d:%02d:%02d", part(seconds / kHour), part(seconds % kHour / kMinute),
                         part(seconds % kMinute));
  }
  return utils::format("%02d:%02d", part(seconds / kMinute), part(seconds % kMinute));
}

ProgressView::ProgressView(std::ostream& out, ProgressStyle style, const std::string& label)
    : m_out(out), m_style(style), m_label(utils::toPrintable(label)) {}

void ProgressView::show(unsigned percent, std::chrono::seconds elapsed) {
  percent = std::min(percent, kComplete);
  switch (m_style) {
    case ProgressStyle::None:
      return;
    case ProgressStyle::Lines:
      showLine(percent, elapsed);
      return;
    case ProgressStyle::Live:
      showLive(percent, elapsed);
      return;
  }
}

void ProgressView::endLine() {
  if (!m_shown.empty()) {
    m_out << '\n' << std::flush;
    m_shown.clear();
  }
}

std::string ProgressView::liveLine(unsigned percent, std::chrono::seconds elapsed) const {
  const unsigned filled = percent * kBarWidth / kComplete;
  return m_label + "  [" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') +
         utils::format("]  %3u %%  ", percent) + toClockText(elapsed);
}

// A line never gets shorter while a job runs, so writing over it leaves no rest of the old one.
void ProgressView::showLive(unsigned percent, std::chrono::seconds elapsed) {
  std::string line = liveLine(percent, elapsed);
  if (line != m_shown) {
    m_out << '\r' << line << std::flush;
    m_shown = std::move(line);
  }
}

void ProgressView::showLine(unsigned percent, std::chrono::seconds elapsed) {
  const int now = static_cast<int>(percent);
  const bool isFirstOrLast = m_lastLinePercent < 0 || percent == kComplete;
  if (now == m_lastLinePercent || (!isFirstOrLast && now - m_lastLinePercent < kLineStep)) {
    return;
  }
  m_out << m_label << ": " << percent << " %, " << toClockText(elapsed) << '\n' << std::flush;
  m_lastLinePercent = now;
}

}  // namespace cli
