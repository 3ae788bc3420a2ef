#include "daemon/LimitedLog.h"

#include <cstddef>
#include <new>
#include <utility>

namespace quorveld {
namespace {

// Of kinds that count as one.
constexpr const char* kOthers = "OrvexQuorvel: LimitedLog:0:quorveld::LimitedLog::write: error: ";

// Returns what a line has in front of its message: "OrvexQuorvel: SOURCE:LINE:FUNCTION: LEVEL: ".
// Functions have colons in their names, but no blank behind one.
std::string kindOf(const std::string& line) {
  constexpr int kParts = 3;
  std::size_t end = 0;
  for (int part = 0; part < kParts; ++part) {
    const std::size_t colon = line.find(": ", end);
    if (colon == std::string::npos) {
      return line;
    }
    end = colon + 2;
  }
  return line.substr(0, end);
}

}  // namespace

LimitedLog::LimitedLog(RecordLimit<std::string>::Now now)
    : m_limit(kMost, std::move(now)),
      m_previous(utils::exchangeLogSinks(this)),
      m_sinks(m_previous != nullptr ? *m_previous : utils::platformLogSinks()) {}

LimitedLog::~LimitedLog() {
  utils::exchangeLogSinks(m_previous);
}

void LimitedLog::writeAllCounts() {
  Rests rests;
  {
    const platform::Lock lock(m_mutex);
    rests = m_limit.takeAll();
  }
  write(rests);
}

void LimitedLog::writeCounts() {
  Rests rests;
  {
    const platform::Lock lock(m_mutex);
    rests = m_limit.takeEnded();
  }
  write(rests);
}

void LimitedLog::writeEventLog(const std::string& line) noexcept {
  try {
    const std::string kind = kindOf(line);
    const platform::Lock lock(m_mutex);
    if (!m_limit.admits(kind, kind)) {
      return;
    }
  } catch (const std::bad_alloc&) {
    // Rather too many than one too few.
  }
  m_sinks.writeEventLog(line);
}

void LimitedLog::writeDebugChannel(const std::string& line) noexcept {
  m_sinks.writeDebugChannel(line);
}

void LimitedLog::writeStandardError(const std::string& text) noexcept {
  m_sinks.writeStandardError(text);
}

void LimitedLog::write(const Rests& rests) {
  for (const RecordLimit<std::string>::Rest& rest : rests) {
    m_sinks.writeEventLog((rest.example.empty() ? kOthers : rest.example) +
                          describeRest(rest.count, rest.time) + "\n");
  }
}

}  // namespace quorveld
