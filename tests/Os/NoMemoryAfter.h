// Memory that runs out for one moment after a record.

#ifndef ORVEX_TESTS_OS_NOMEMORYAFTER_H_
#define ORVEX_TESTS_OS_NOMEMORYAFTER_H_

#include <cerrno>
#include <optional>
#include <string>

#include "Utils/Log.h"
#include "tests/Os/SystemFaults.h"

namespace test {

// While one lives, the first allocation behind each such record fails, with an error of
// SystemCall::Allocate.
class NoMemoryAfter : private utils::LogSinks {
 public:
  explicit NoMemoryAfter(const std::string& message, int error = ENOMEM)
      : m_message(message), m_error(error), m_previous(utils::exchangeLogSinks(this)) {}
  ~NoMemoryAfter() override { utils::exchangeLogSinks(m_previous); }

 private:
  void writeEventLog(const std::string& line) noexcept override { m_previous->writeEventLog(line); }
  void writeDebugChannel(const std::string& line) noexcept override {
    m_previous->writeDebugChannel(line);
  }
  // The last of the places that a record goes to.
  void writeStandardError(const std::string& text) noexcept override {
    m_previous->writeStandardError(text);
    if (text.find(m_message) != std::string::npos) {
      m_noMemory.emplace(SystemCall::Allocate, m_error);
    }
  }

  const std::string m_message;
  const int m_error;
  std::optional<FailingCall> m_noMemory;
  utils::LogSinks* m_previous;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_NOMEMORYAFTER_H_
