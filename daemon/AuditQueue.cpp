#include "daemon/AuditQueue.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "daemon/ContentDigest.h"
#include "http/PeerGroup.h"

namespace quorveld {
namespace {

using Clock = std::chrono::steady_clock;
using Limit = RecordLimit<wbem::AuditRecord>;

// How often counts that are due are looked for.
constexpr std::chrono::seconds kPeriod{1};

constexpr const char* kLogin = "Login";

// What methods and operations that did what they were asked for answer.
constexpr std::string_view kSuccesses[] = {"0", "4096", "CIM_ERR_SUCCESS"};

// Returns whether the record must not become one of many: of what has changed something.
bool isAlwaysWritten(const wbem::AuditRecord& record) {
  return record.action == "JobEnd" || std::find(std::begin(kSuccesses), std::end(kSuccesses),
                                                record.result) != std::end(kSuccesses);
}

// Returns a result without what it says of this one request.
std::string toResultKind(const std::string& result) {
  return result.substr(0, result.find_first_of(":,"));
}

// Names of a login that is refused are the client's invention.
std::string userOf(const wbem::AuditRecord& record) {
  return record.action == kLogin ? "" : record.caller.user;
}

std::string kindOf(const wbem::AuditRecord& record) {
  std::string kind;
  for (const std::string& part : {record.action, http::toPeerGroup(record.caller.address),
                                  userOf(record), toResultKind(record.result)}) {
    kind += part;
    kind += '\0';
  }
  return kind;
}

wbem::AuditRecord toRecord(const Limit::Rest& rest) {
  wbem::AuditRecord record;
  record.caller = rest.example.caller;
  record.caller.user = userOf(rest.example);
  record.action = rest.example.action;
  const std::string kind = toResultKind(rest.example.result);
  record.result = kind + (kind.empty() ? "" : " ") + describeRest(rest.count, Limit::kPeriod);
  return record;
}

wbem::AuditRecord tellLoss(const std::string& what) {
  wbem::AuditRecord record;
  record.action = "Audit";
  record.result = what + ": the system log does not take them in time";
  return record;
}

}  // namespace

AuditQueue::AuditQueue(AuditSink& sink) : AuditQueue(sink, Limits()) {}

AuditQueue::AuditQueue(AuditSink& sink, Limits limits)
    : m_sink(sink),
      m_limits(std::move(limits)),
      m_limit(kMostOfAKind, m_limits.now),
      m_thread([this] { run(); }) {}

AuditQueue::~AuditQueue() {
  {
    const platform::Lock lock(m_mutex);
    append(m_limit.takeAll());
    m_isOver = true;
    m_end = Clock::now() + m_limits.farewell;
  }
  m_changed.notify_all();
  m_thread.join();
  const platform::Lock lock(m_mutex);
  for (const wbem::AuditRecord& record : m_waiting) {
    m_sink.writeElsewhere(record);
  }
  if (m_lost > 0) {
    m_sink.writeElsewhere(tellLoss(std::to_string(m_lost) + " records lost"));
  }
}

void AuditQueue::write(const wbem::AuditRecord& record) noexcept {
  const platform::Lock lock(m_mutex);
  try {
    if (!isAlwaysWritten(record) && !m_limit.admits(kindOf(record), record)) {
      return;
    }
    if (m_waiting.size() < m_limits.mostWaiting) {
      m_waiting.push_back(record);
      m_changed.notify_all();
      return;
    }
  } catch (const std::exception&) {
    // There is no memory for it.
  }
  ++m_lost;
}

std::string AuditQueue::digest(std::span<const std::uint8_t> content) const noexcept {
  try {
    return digestContent(content);
  } catch (const std::exception&) {
    return {};
  }
}

void AuditQueue::run() {
  while (handOver()) {
  }
}

bool AuditQueue::handOver() {
  wbem::AuditRecord record;
  bool isOver = false;
  if (!waitForRecord(record, isOver)) {
    return !isOver;
  }
  const bool isDone = m_sink.write(record, m_limits.patience);
  bool isLossNew = false;
  {
    const platform::Lock lock(m_mutex);
    if (isDone) {
      m_waiting.pop_front();
      if (m_lost > 0) {
        m_waiting.push_back(tellLoss(std::to_string(std::exchange(m_lost, 0)) + " records lost"));
        m_isLossTold = false;
      }
    }
    isLossNew = m_lost > 0 && !std::exchange(m_isLossTold, m_lost > 0);
  }
  if (isLossNew) {
    m_sink.writeElsewhere(tellLoss("records are being lost"));
  }
  return true;
}

bool AuditQueue::waitForRecord(wbem::AuditRecord& record, bool& isOver) {
  const platform::Lock lock(m_mutex);
  const Clock::time_point turn = Clock::now() + kPeriod;
  while (!m_isOver && m_waiting.empty() &&
         m_changed.wait_until(m_mutex, turn) == std::cv_status::no_timeout) {
  }
  append(m_limit.takeEnded());
  isOver = m_isOver && (m_waiting.empty() || Clock::now() >= m_end);
  if (isOver || m_waiting.empty()) {
    return false;
  }
  record = m_waiting.front();
  return true;
}

void AuditQueue::append(const std::vector<Limit::Rest>& rests) {
  for (const Limit::Rest& rest : rests) {
    m_waiting.push_back(toRecord(rest));
  }
}

}  // namespace quorveld
