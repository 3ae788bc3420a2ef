#include "cli/ProgressView.h"

#include <algorithm>
#include <utility>

#include "Utils/ClockText.h"
#include "Utils/Format.h"
#include "Utils/Printable.h"

namespace cli {
namespace {

constexpr unsigned kComplete = 100;
constexpr unsigned kBarWidth = 20;
constexpr int kLineStep = 10;  // percent
constexpr std::chrono::seconds kWaitLineStep{30};

}  // namespace

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
      showLive(liveLine(percent, elapsed));
      return;
  }
}

void ProgressView::showWait(const std::string& holder, std::chrono::seconds elapsed) {
  const std::string text = "waiting for the flash: " + utils::toPrintable(holder);
  if (m_style == ProgressStyle::Live) {
    showLive(m_label + "  " + text);
  }
  if (m_style == ProgressStyle::Lines &&
      (!m_lastWaitLine || elapsed - *m_lastWaitLine >= kWaitLineStep)) {
    m_out << m_label << ": " << text << '\n' << std::flush;
    m_lastWaitLine = elapsed;
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
         utils::format("]  %3u %%  ", percent) + utils::toClockText(elapsed);
}

void ProgressView::showLive(std::string line) {
  if (line == m_shown) {
    return;
  }
  m_out << '\r' << line;
  if (line.size() < m_shown.size()) {
    // What is left of a longer one.
    m_out << std::string(m_shown.size() - line.size(), ' ');
  }
  m_out << std::flush;
  m_shown = std::move(line);
}

void ProgressView::showLine(unsigned percent, std::chrono::seconds elapsed) {
  const int now = static_cast<int>(percent);
  const bool isFirstOrLast = m_lastLinePercent < 0 || percent == kComplete;
  if (now == m_lastLinePercent || (!isFirstOrLast && now - m_lastLinePercent < kLineStep)) {
    return;
  }
  m_out << m_label << ": " << percent << " %, " << utils::toClockText(elapsed) << '\n'
        << std::flush;
  m_lastLinePercent = now;
}

}  // namespace cli
