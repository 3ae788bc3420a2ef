// The progress of one job, as a person follows it.
//
//   live   one line, rewritten in place: updating 0000:03:00.0  [########............]   42 % 00:03
//   lines  a line of its own for each tenth: updating 0000:03:00.0: 40 %, 00:03
//   none   nothing

#ifndef ORVEX_CLI_PROGRESSVIEW_H_
#define ORVEX_CLI_PROGRESSVIEW_H_

#include <chrono>
#include <optional>
#include <ostream>
#include <string>

namespace cli {

enum class ProgressStyle { None, Lines, Live };

class ProgressView {
 public:
  // `label` says what goes on: "updating 0000:03:00.0". What would disturb a terminal is escaped.
  ProgressView(std::ostream& out, ProgressStyle style, const std::string& label);
  ProgressView(const ProgressView&) = delete;
  ProgressView& operator=(const ProgressView&) = delete;
  ~ProgressView() = default;

  // Shows the progress; what would look the same as before is not printed again. Percent beyond 100
  // counts as 100.
  void show(unsigned percent, std::chrono::seconds elapsed);

  // Shows instead that the flash is waited for, and who has it. Without a live line it is said at
  // first and then every half minute.
  void showWait(const std::string& holder, std::chrono::seconds elapsed);

  // Ends the live line, so that something else may be printed below it; the next show() begins a
  // new one.
  void endLine();

 private:
  [[nodiscard]] std::string liveLine(unsigned percent, std::chrono::seconds elapsed) const;
  void showLive(std::string line);
  void showLine(unsigned percent, std::chrono::seconds elapsed);

  std::ostream& m_out;
  const ProgressStyle m_style;
  const std::string m_label;
  std::string m_shown;         // the live line that stands there, empty for none
  int m_lastLinePercent = -1;  // of the last line of its own, -1 before the first
  std::optional<std::chrono::seconds> m_lastWaitLine;
};

}  // namespace cli

#endif  // ORVEX_CLI_PROGRESSVIEW_H_
