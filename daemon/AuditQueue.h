// The audit of the host: takes records without a wait, and has a thread hand them to a sink, in
// their order.
//
// A sink that takes nothing holds up nobody but that thread. Records wait for it, a bounded number
// of them; what there is no room for is counted, and a record of its own says so as soon as there
// is room, as does the sink's last resort at once. Of failures of one kind (one client's and
// user's, with one result) the first ones within some seconds have a record each, and the rest one
// with their number; what succeeded always has its own.

#ifndef ORVEX_DAEMON_AUDITQUEUE_H_
#define ORVEX_DAEMON_AUDITQUEUE_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "daemon/RecordLimit.h"
#include "platform/Mutex.h"
#include "wbem/Audit.h"

namespace quorveld {

// Where the records of the audit end up. One thread at a time.
class AuditSink {
 public:
  AuditSink() = default;
  AuditSink(const AuditSink&) = delete;
  AuditSink& operator=(const AuditSink&) = delete;
  virtual ~AuditSink() = default;

  // Returns whether the record is out of the way: false when there was no room for it within the
  // time, so that it is to be tried again.
  [[nodiscard]] virtual bool write(const wbem::AuditRecord& record,
                                   std::chrono::milliseconds patience) noexcept = 0;
  // Writes a record to wherever somebody may still see it; does not wait.
  virtual void writeElsewhere(const wbem::AuditRecord& record) noexcept = 0;
};

class AuditQueue final : public wbem::Audit {
 public:
  static constexpr unsigned kMostOfAKind = 12;

  struct Limits {
    std::size_t mostWaiting = 2048;
    std::chrono::milliseconds patience{200};   // of one try
    std::chrono::milliseconds farewell{2000};  // of all, at the end
    RecordLimit<wbem::AuditRecord>::Now now = RecordLimit<wbem::AuditRecord>::Clock::now;
  };

  // The sink is the caller's and outlives this. Throws std::system_error.
  explicit AuditQueue(AuditSink& sink);
  AuditQueue(AuditSink& sink, Limits limits);
  // Hands over what waits, for the time of the farewell; the rest is written elsewhere.
  ~AuditQueue() override;

  void write(const wbem::AuditRecord& record) noexcept override;
  [[nodiscard]] std::string digest(std::span<const std::uint8_t> content) const noexcept override;

 private:
  void run();
  // Returns false when it is over.
  [[nodiscard]] bool handOver();
  // Returns whether there is a record to hand over, having waited for one; `isOver` says whether
  // to go on.
  [[nodiscard]] bool waitForRecord(wbem::AuditRecord& record, bool& isOver);
  void append(const std::vector<RecordLimit<wbem::AuditRecord>::Rest>& rests)
      ORVEX_REQUIRES(m_mutex);

  AuditSink& m_sink;
  const Limits m_limits;
  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  RecordLimit<wbem::AuditRecord> m_limit ORVEX_GUARDED_BY(m_mutex);
  std::deque<wbem::AuditRecord> m_waiting ORVEX_GUARDED_BY(m_mutex);
  std::uint64_t m_lost ORVEX_GUARDED_BY(m_mutex) = 0;  // for want of room
  bool m_isLossTold ORVEX_GUARDED_BY(m_mutex) = false;
  bool m_isOver ORVEX_GUARDED_BY(m_mutex) = false;
  std::chrono::steady_clock::time_point m_end ORVEX_GUARDED_BY(m_mutex);
  std::thread m_thread;  // last: it uses the rest
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_AUDITQUEUE_H_
