// The error records that the agents log while a method runs: the reason of a refusal is in them,
// where the method itself answers with a number only.
//
// Stands in front of the sinks that were in force and passes every record on. Once installed it
// stays until the process ends, since job threads may be logging at any time. Records of other
// threads than the one that started the recording are not kept.

#ifndef ORVEX_CLIENT_ERRORRECORDS_H_
#define ORVEX_CLIENT_ERRORRECORDS_H_

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Utils/Log.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"

namespace client {

class ErrorRecords final : public utils::LogSinks {
 public:
  // Returns the recorder of the process, which the first call installs.
  [[nodiscard]] static ErrorRecords& instance();

  // Begins to keep the error records of this thread, without those kept before.
  void start();
  // Stops keeping and returns the messages in their order, each without the record's frame (see
  // messageOf).
  [[nodiscard]] std::vector<std::string> take();

  void writeEventLog(const std::string& line) noexcept override;
  void writeDebugChannel(const std::string& line) noexcept override;
  void writeStandardError(const std::string& text) noexcept override;

 private:
  ErrorRecords() = default;

  utils::LogSinks* m_next = nullptr;
  // Not utils::Mutex, which logs its failures: through these sinks.
  platform::Mutex m_mutex;
  std::thread::id m_thread ORVEX_GUARDED_BY(m_mutex);
  std::vector<std::string> m_lines ORVEX_GUARDED_BY(m_mutex);
};

// Returns the message of the log line of an error record, the whole line when it is none.
[[nodiscard]] std::string messageOf(std::string_view line);

// Returns the reason that the messages of a refusal give: the text of the last exception that a job
// class caught, else the last message; empty when there is none. The text begins with its type, as
// in "EInvalidUri:URI: x is invalid".
[[nodiscard]] std::string reasonOf(const std::vector<std::string>& messages);

// Returns the text of an exception without its type's name and without blanks at its end.
[[nodiscard]] std::string withoutType(std::string_view text);

}  // namespace client

#endif  // ORVEX_CLIENT_ERRORRECORDS_H_
