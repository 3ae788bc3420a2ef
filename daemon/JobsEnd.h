// The wait for the end of the jobs that run when the daemon is asked to stop.

#ifndef ORVEX_DAEMON_JOBSEND_H_
#define ORVEX_DAEMON_JOBSEND_H_

#include <chrono>
#include <functional>

namespace quorveld {

inline constexpr std::chrono::milliseconds kJobsPeriod{100};

// Returns when `count` is 0, which it is asked for again and again, with `pause` between. `report`
// is told each number that is new. A count that throws is logged and asked for again: an update
// that cannot be seen may be running all the same.
void waitForJobs(const std::function<unsigned()>& count,
                 const std::function<void(unsigned running)>& report,
                 const std::function<void()>& pause);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_JOBSEND_H_
