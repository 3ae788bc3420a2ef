// How many updates run, as monitors are told it: a count takes its turn among the requests of
// clients, so monitors, who need no login, cause one a second at the most, and one of them waits.
// Any thread may call.

#ifndef ORVEX_DAEMON_RUNNINGJOBS_H_
#define ORVEX_DAEMON_RUNNINGJOBS_H_

#include <chrono>
#include <functional>
#include <optional>

#include "Utils/Mutex.h"

namespace quorveld {

class RunningJobs {
 public:
  using Count = std::function<unsigned()>;
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  explicit RunningJobs(Count count, Clock clock = std::chrono::steady_clock::now);
  RunningJobs(const RunningJobs&) = delete;
  RunningJobs& operator=(const RunningJobs&) = delete;
  ~RunningJobs();

  // Returns a count that is younger than a second, or the last one while another thread takes a
  // new one. Until there is a first one, all take it. Throws what the count throws.
  [[nodiscard]] unsigned get();

 private:
  // Returns nothing where the caller has to count.
  [[nodiscard]] std::optional<unsigned> findOrBegin();

  const Count m_count;
  const Clock m_clock;
  utils::Mutex m_mutex;
  std::optional<unsigned> m_last ORVEX_GUARDED_BY(m_mutex);
  // When the last one was.
  std::chrono::steady_clock::time_point m_taken ORVEX_GUARDED_BY(m_mutex);
  unsigned m_counting ORVEX_GUARDED_BY(m_mutex) = 0;  // threads that count now
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_RUNNINGJOBS_H_
