#include "daemon/AuditQueue.h"

#include <algorithm>
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

// How often counts that are due are looked for.
constexpr std::chrono::seconds kPeriod{1};

constexpr const char* kLogin = "Login";
constexpr const char* kJobEnd = "JobEnd";
constexpr const char* kUnknownAction = "unknown method";

// What methods and operations that did what they were asked for answer.
constexpr std::string_view kSuccesses[] = {"0", "4096", "CIM_ERR_SUCCESS"};

// Returns whether the record is of something that the host itself calls so, rather than of a method
// that a client has given this name.
bool isOwn(const wbem::AuditRecord& record, const char* action) {
  return record.action == action && !record.result.starts_with("CIM_ERR_");
}

// Returns whether the record must not become one of many: of what has changed something.
bool isAlwaysWritten(const wbem::AuditRecord& record) {
  return isOwn(record, kJobEnd) || std::find(std::begin(kSuccesses), std::end(kSuccesses),
                                             record.result) != std::end(kSuccesses);
}

// Returns a result without what it says of this one request.
std::string toResultKind(const std::string& result) {
  return result.substr(0, result.find_first_of(":,"));
}

// Names of a login that is refused are the client's invention.
std::string userOf(const wbem::AuditRecord& record) {
  return isOwn(record, kLogin) ? "" : record.caller.user;
}

// Returns who it is whose failures are counted together. Of a login, its details tell which user of
// this machine it came from.
std::string ownerOf(const wbem::AuditRecord& record) {
  const bool isLogin = isOwn(record, kLogin) && !record.details.empty();
  return http::toPeerGroup(record.caller.address) + '\0' +
         (isLogin ? record.details.front().second : userOf(record));
}

wbem::AuditRecord tellLoss(const std::string& what) {
  wbem::AuditRecord record;
  record.action = "Audit";
  record.result = what + ": the system log does not take them in time";
  return record;
}

std::string countLost(std::uint64_t lost) {
  return std::to_string(lost) + " records lost";
}

}  // namespace

AuditQueue::AuditQueue(AuditSink& sink, FindAction findAction)
    : AuditQueue(sink, std::move(findAction), Limits()) {}

AuditQueue::AuditQueue(AuditSink& sink, FindAction findAction, Limits limits)
    : m_sink(sink),
      m_findAction(std::move(findAction)),
      m_limits(std::move(limits)),
      m_limit(kMostOfAKind, m_limits.now, kMostKinds),
      m_loginLimit(kMostOfAKind, m_limits.now, kMostKinds),
      m_thread([this] { run(); }) {}

AuditQueue::~AuditQueue() {
  beginFarewell();
  m_thread.join();
  writeRestElsewhere();
}

void AuditQueue::beginFarewell() {
  {
    const platform::Lock lock(m_mutex);
    for (Limit* const limit : {&m_limit, &m_loginLimit}) {
      try {
        append(limit->takeAll());
      } catch (...) {
        m_lost += limit->countLeftOut();
      }
    }
    m_isOver = true;
    m_end = Clock::now() + m_limits.farewell;
  }
  m_changed.notify_all();
}

void AuditQueue::writeRestElsewhere() {
  const platform::Lock lock(m_mutex);
  for (const wbem::AuditRecord& record : m_waiting) {
    m_sink.writeElsewhere(record);
  }
  if (m_lost > 0) {
    m_sink.writeElsewhere(tellLoss(countLost(m_lost)));
  }
}

void AuditQueue::write(const wbem::AuditRecord& record) noexcept {
  const bool isAlways = isAlwaysWritten(record);
  const bool isLogin = isOwn(record, kLogin);
  const std::size_t room = isAlways  ? m_limits.mostOfAll
                           : isLogin ? m_limits.mostWaiting / 2
                                     : m_limits.mostWaiting;
  {
    const platform::Lock lock(m_mutex);
    try {
      Limit& limit = isLogin ? m_loginLimit : m_limit;
      if (!isAlways && !limit.admits(ownerOf(record), kindOf(record), record)) {
        return;
      }
      if (m_waiting.size() < room) {
        m_waiting.push_back(record);
        m_changed.notify_all();
        // A refusal is no change that has to be told of first, and holds a place in the line.
        if (!isLogin) {
          awaitSink();
        }
        return;
      }
    } catch (...) {
      // There is no memory for it.
    }
    if (!isAlways) {
      ++m_lost;
      return;
    }
  }
  m_sink.writeElsewhere(record);
}

void AuditQueue::awaitSink() {
  const std::uint64_t last = m_taken + m_waiting.size();
  const Clock::time_point end = Clock::now() + m_limits.courtesy;
  while (m_taken < last && !m_isStuck &&
         m_changed.wait_until(m_mutex, end) == std::cv_status::no_timeout) {
  }
}

std::string AuditQueue::digest(std::span<const std::uint8_t> content) const noexcept {
  try {
    return digestContent(content);
  } catch (...) {
    return {};
  }
}

void AuditQueue::run() {
  bool goesOn = true;
  while (goesOn) {
    try {
      goesOn = handOver();
    } catch (...) {
      // For want of memory, of which there may be more in a moment.
      goesOn = pauseAfterFault();
    }
  }
}

bool AuditQueue::handOver() {
  const Next next = awaitNext();
  if (!next.loss && next.waiting == nullptr) {
    return !next.isOver;
  }
  const Clock::time_point begin = Clock::now();
  const bool isDone = m_sink.write(next.loss ? *next.loss : *next.waiting, m_limits.patience);
  if (noteWritten(next, isDone)) {
    m_sink.writeElsewhere(tellLoss("records are being lost"));
  }
  if (!isDone) {
    // A sink that did not wait itself is not asked again and again.
    pauseUntil(begin + m_limits.patience);
  }
  return true;
}

AuditQueue::Next AuditQueue::awaitNext() {
  Next next;
  const platform::Lock lock(m_mutex);
  const Clock::time_point turn = Clock::now() + kPeriod;
  while (!m_isOver && m_waiting.empty() &&
         m_changed.wait_until(m_mutex, turn) == std::cv_status::no_timeout) {
  }
  appendEnded(m_limit);
  appendEnded(m_loginLimit);
  if (isLossDue()) {
    next.loss = tellLoss(countLost(m_lost));
    next.lost = m_lost;
  }
  next.isOver = m_isOver && ((m_waiting.empty() && !next.loss) || Clock::now() >= m_end);
  if (next.isOver) {
    next.loss.reset();
  } else if (!m_waiting.empty()) {
    next.waiting = &m_waiting.front();
  }
  return next;
}

bool AuditQueue::noteWritten(const Next& next, bool isDone) {
  const platform::Lock lock(m_mutex);
  m_isSinkTaking = isDone;
  if (isDone && next.loss) {
    m_lost -= next.lost;
    m_isLossTold = false;
    m_nextLoss = m_limits.now() + Limit::kPeriod;
  } else if (isDone) {
    m_waiting.pop_front();
    ++m_taken;
  }
  m_isStuck = !isDone;
  m_changed.notify_all();
  return m_lost > 0 && !std::exchange(m_isLossTold, m_lost > 0);
}

void AuditQueue::pauseUntil(Clock::time_point end) {
  const platform::Lock lock(m_mutex);
  while (true) {
    const Clock::time_point last = m_isOver ? std::min(end, m_end) : end;
    if (Clock::now() >= last) {
      return;
    }
    static_cast<void>(m_changed.wait_until(m_mutex, last));
  }
}

bool AuditQueue::pauseAfterFault() noexcept {
  {
    const platform::Lock lock(m_mutex);
    m_isStuck = true;
    m_changed.notify_all();
    if (m_isOver && Clock::now() >= m_end) {
      return false;
    }
  }
  pauseUntil(Clock::now() + m_limits.patience);
  return true;
}

std::string AuditQueue::kindOf(const wbem::AuditRecord& record) const {
  const bool isClients = !isOwn(record, kLogin);
  const std::string action = isClients ? m_findAction(record.action) : record.action;
  return (action.empty() ? kUnknownAction : action) + '\0' + toResultKind(record.result);
}

wbem::AuditRecord AuditQueue::toRecord(const Limit::Rest& rest) const {
  wbem::AuditRecord record;
  record.caller = rest.example.caller;
  record.caller.user = userOf(rest.example);
  if (isOwn(rest.example, kLogin)) {
    record.details = rest.example.details;
  }
  std::string kind;
  if (!rest.isMixed) {
    const std::string fullKind = kindOf(rest.example);
    record.action = fullKind.substr(0, fullKind.find('\0'));
    kind = fullKind.substr(record.action.size() + 1);
  }
  record.result = kind + (kind.empty() ? "" : " ") + describeRest(rest.count, rest.time);
  return record;
}

// One record of a loss in a period: a flood that goes on would else get one for each that is lost.
bool AuditQueue::isLossDue() const {
  return m_lost > 0 && (m_isSinkTaking || m_waiting.empty()) &&
         (m_isOver || m_limits.now() >= m_nextLoss);
}

void AuditQueue::appendEnded(Limit& limit) {
  if (m_waiting.size() < m_limits.mostWaiting) {
    append(limit.takeEnded(m_limits.mostWaiting - m_waiting.size()));
  }
}

void AuditQueue::append(const std::vector<Limit::Rest>& rests) noexcept {
  for (const Limit::Rest& rest : rests) {
    try {
      m_waiting.push_back(toRecord(rest));
    } catch (...) {
      m_lost += rest.count;  // for want of memory: it cannot be told what they were
    }
  }
}

}  // namespace quorveld
