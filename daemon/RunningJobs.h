// How many updates run, as monitors are told it. A count takes its turn among the requests of
// clients, which may be long in coming: a thread of its own waits for that, and monitors, who need
// no login, cause one count a second at the most and wait a moment. Any thread may call.

#ifndef ORVEX_DAEMON_RUNNINGJOBS_H_
#define ORVEX_DAEMON_RUNNINGJOBS_H_

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <thread>

#include "platform/Mutex.h"

namespace quorveld {

class RunningJobs {
 public:
  using Count = std::function<unsigned()>;
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  static constexpr std::chrono::milliseconds kPatience{200};

  // Throws std::system_error where no thread can be started.
  explicit RunningJobs(Count count, Clock clock = std::chrono::steady_clock::now,
                       std::chrono::milliseconds patience = kPatience);
  RunningJobs(const RunningJobs&) = delete;
  RunningJobs& operator=(const RunningJobs&) = delete;
  // Waits for the count that is under way.
  ~RunningJobs();

  // Returns a count that is younger than a second, or where a new one takes longer than the
  // patience, the last one; nothing where there is none yet. Throws what the count throws.
  [[nodiscard]] std::optional<unsigned> get();

 private:
  // Of the destructor, in which the compiler does not look for locks.
  void end();
  void run();
  // Returns false when it is over.
  [[nodiscard]] bool waitForWish();
  void count();

  const Count m_count;
  const Clock m_clock;
  const std::chrono::milliseconds m_patience;
  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  std::optional<unsigned> m_last ORVEX_GUARDED_BY(m_mutex);
  // When the last one was.
  std::chrono::steady_clock::time_point m_taken ORVEX_GUARDED_BY(m_mutex);
  std::exception_ptr m_failure ORVEX_GUARDED_BY(m_mutex);  // of the last try
  std::uint64_t m_tries ORVEX_GUARDED_BY(m_mutex) = 0;     // that have ended
  bool m_isWanted ORVEX_GUARDED_BY(m_mutex) = false;
  bool m_isOver ORVEX_GUARDED_BY(m_mutex) = false;
  std::thread m_thread;  // last: it uses the rest
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_RUNNINGJOBS_H_
