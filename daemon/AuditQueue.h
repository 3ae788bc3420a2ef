// The audit of the host: has a thread hand records to a sink, in their order.
//
// Who writes goes on when the sink has the record, but for a login's refusal, so that it is there
// before the client has an answer, and is lost by no end of the process then. A sink that takes
// nothing holds up nobody but that thread: who writes waits a moment for it, and not at all where
// it has not taken the last record. Records wait for it, a bounded number of them; failures that
// there is no room for are counted, and a record of their own says so as soon as the sink takes one
// again, as does the sink's last resort at once. Of failures of one kind (one client's and user's,
// with one action and result) the first ones within some seconds have a record each, and the rest
// one with their number. Of one client and user, few kinds are told apart, and all actions that no
// class knows are one kind, since he can invent them.
//
// Logins that are refused, which anybody may try from anywhere, have kinds of their own and half of
// the room.
//
// What has changed something always has its record: failures leave room for very many of these, and
// what waits beyond that goes to the last resort at once.

#ifndef ORVEX_DAEMON_AUDITQUEUE_H_
#define ORVEX_DAEMON_AUDITQUEUE_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "daemon/RecordLimit.h"
#include "platform/Mutex.h"
#include "wbem/Audit.h"

namespace quorveld {

// Where the records of the audit end up.
class AuditSink {
 public:
  AuditSink() = default;
  AuditSink(const AuditSink&) = delete;
  AuditSink& operator=(const AuditSink&) = delete;
  virtual ~AuditSink() = default;

  // Returns whether the record is out of the way: false when there was no room for it within the
  // time, so that it is to be tried again. One thread at a time.
  [[nodiscard]] virtual bool write(const wbem::AuditRecord& record,
                                   std::chrono::milliseconds patience) noexcept = 0;
  // Writes a record to wherever somebody may still see it; does not wait. Any thread.
  virtual void writeElsewhere(const wbem::AuditRecord& record) noexcept = 0;
};

class AuditQueue final : public wbem::Audit {
  using Limit = RecordLimit<wbem::AuditRecord>;

 public:
  static constexpr unsigned kMostOfAKind = 12;
  static constexpr std::size_t kMostKinds = 16;  // of one client and user

  // Returns the name of what a client wants to do as it is declared, empty where nothing is.
  using FindAction = std::function<std::string(const std::string& action)>;

  struct Limits {
    std::size_t mostWaiting = 2048;            // with failures among them
    std::size_t mostOfAll = 32'768;            // with what has changed something
    std::chrono::milliseconds patience{200};   // of one try
    std::chrono::milliseconds courtesy{1000};  // of who writes, for the sink to have the record
    std::chrono::milliseconds farewell{2000};  // of all, at the end
    Limit::Now now = Limit::Clock::now;
  };

  // The sink is the caller's and outlives this. Throws std::system_error.
  AuditQueue(AuditSink& sink, FindAction findAction);
  AuditQueue(AuditSink& sink, FindAction findAction, Limits limits);
  // Hands over what waits, for the time of the farewell; the rest is written elsewhere.
  ~AuditQueue() override;

  void write(const wbem::AuditRecord& record) noexcept override;
  [[nodiscard]] std::string digest(std::span<const std::uint8_t> content) const noexcept override;

 private:
  // What is handed over next.
  struct Next {
    const wbem::AuditRecord* waiting = nullptr;  // stays the first until it is taken away
    std::optional<wbem::AuditRecord> loss;       // comes before
    std::uint64_t lost = 0;                      // what it tells
    bool isOver = false;
  };

  // Both of the destructor, in which the compiler does not look for locks.
  void beginFarewell();
  void writeRestElsewhere();
  void run();
  // Returns false when it is over.
  [[nodiscard]] bool handOver();
  // Returns what there is to hand over, having waited for it.
  [[nodiscard]] Next awaitNext();
  // Takes away what the sink has taken. Returns whether a loss is new.
  [[nodiscard]] bool noteWritten(const Next& next, bool isDone);
  void pauseUntil(std::chrono::steady_clock::time_point end);
  // After a failure of the thread's own. Returns whether it goes on.
  [[nodiscard]] bool pauseAfterFault() noexcept;

  [[nodiscard]] std::string kindOf(const wbem::AuditRecord& record) const;
  [[nodiscard]] wbem::AuditRecord toRecord(const Limit::Rest& rest) const;
  [[nodiscard]] bool isLossDue() const ORVEX_REQUIRES(m_mutex);
  // Appends the counts of a limit that are due, as far as there is room for them.
  void appendEnded(Limit& limit) ORVEX_REQUIRES(m_mutex);
  void append(const std::vector<Limit::Rest>& rests) noexcept ORVEX_REQUIRES(m_mutex);
  // Returns when the sink has all that waits now, or not in time.
  void awaitSink() ORVEX_REQUIRES(m_mutex);

  AuditSink& m_sink;
  const FindAction m_findAction;
  const Limits m_limits;
  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  Limit m_limit ORVEX_GUARDED_BY(m_mutex);
  Limit m_loginLimit ORVEX_GUARDED_BY(m_mutex);
  // The thread alone takes records away, and only the first one.
  std::deque<wbem::AuditRecord> m_waiting ORVEX_GUARDED_BY(m_mutex);
  std::uint64_t m_lost ORVEX_GUARDED_BY(m_mutex) = 0;     // and not told of in a record
  bool m_isLossTold ORVEX_GUARDED_BY(m_mutex) = false;    // by the last resort
  bool m_isSinkTaking ORVEX_GUARDED_BY(m_mutex) = false;  // the last record that it was given
  bool m_isStuck ORVEX_GUARDED_BY(m_mutex) = false;     // the last record could not be handed over
  std::uint64_t m_taken ORVEX_GUARDED_BY(m_mutex) = 0;  // of those that waited, by the sink
  Limit::Clock::time_point m_nextLoss ORVEX_GUARDED_BY(m_mutex) = Limit::Clock::time_point::min();
  bool m_isOver ORVEX_GUARDED_BY(m_mutex) = false;
  std::chrono::steady_clock::time_point m_end ORVEX_GUARDED_BY(m_mutex);
  std::thread m_thread;  // last: it uses the rest
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_AUDITQUEUE_H_
