// A thread that does something again and again until it is ended.

#ifndef ORVEX_DAEMON_PERIODICTASK_H_
#define ORVEX_DAEMON_PERIODICTASK_H_

#include <chrono>
#include <condition_variable>
#include <functional>
#include <string>
#include <thread>

#include "platform/Mutex.h"

namespace quorveld {

class PeriodicTask {
 public:
  // Does `task` on a thread of its own, once in each period. What it throws is logged where its
  // text is not that of the last failure, and it is done again. Throws std::system_error.
  PeriodicTask(std::chrono::milliseconds period, std::function<void()> task);
  PeriodicTask(const PeriodicTask&) = delete;
  PeriodicTask& operator=(const PeriodicTask&) = delete;
  // Waits for the task that is under way.
  ~PeriodicTask();

 private:
  // Of the destructor, in which the compiler does not look for locks.
  void end();
  void run();
  void logOnce(const char* text) noexcept;
  // Returns false when it is over.
  [[nodiscard]] bool waitForTurn();

  const std::chrono::milliseconds m_period;
  const std::function<void()> m_task;
  std::string m_logged;  // of the thread
  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  bool m_isOver ORVEX_GUARDED_BY(m_mutex) = false;
  std::thread m_thread;  // last: it uses the rest
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_PERIODICTASK_H_
