// The agents' log of a host that others reach: who sends it thousands of requests that fail must
// not write a log full. Of each kind of error (source, line and function), the first ones within
// some seconds pass, and then a record says how many more there were. Debug records all pass: they
// are there while somebody looks for something.
//
// Any thread.

#ifndef ORVEX_DAEMON_LIMITEDLOG_H_
#define ORVEX_DAEMON_LIMITEDLOG_H_

#include <string>
#include <vector>

#include "Utils/Log.h"
#include "daemon/RecordLimit.h"
#include "platform/Mutex.h"

namespace quorveld {

class LimitedLog final : public utils::LogSinks {
 public:
  static constexpr unsigned kMost = 50;

  // Takes the place of the sinks that are in force, and gives it back at destruction: nobody
  // else may log at either time.
  explicit LimitedLog(RecordLimit<std::string>::Now now = RecordLimit<std::string>::Clock::now);
  ~LimitedLog() override;

  // Writes the counts that are due. To be called once in a while.
  void writeCounts();
  // Writes all of them, at the end.
  void writeAllCounts();

  void writeEventLog(const std::string& line) noexcept override;
  void writeDebugChannel(const std::string& line) noexcept override;
  void writeStandardError(const std::string& text) noexcept override;

 private:
  using Rests = std::vector<RecordLimit<std::string>::Rest>;

  void write(const Rests& rests);

  platform::Mutex m_mutex;
  RecordLimit<std::string> m_limit ORVEX_GUARDED_BY(m_mutex);
  utils::LogSinks* const m_previous;  // as exchangeLogSinks() has it
  utils::LogSinks& m_sinks;           // what is written to
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_LIMITEDLOG_H_
