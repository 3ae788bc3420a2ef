// A thread of execution whose body is a virtual operation.
//
// Life cycle: constructed (no thread), start() (at most once), run() on the new thread,
// destruction. The destructor waits for a started body without limit, so a derived class whose body
// uses its own members must have seen the body end before its own destructor returns. A body for
// which a stop was requested before the thread reached it is never called.
//
// On Windows the module of the derived class stays loaded until its threads have ended, and the
// object may be destroyed on its own thread, once the body has returned.

#ifndef ORVEX_UTILS_THREAD_H_
#define ORVEX_UTILS_THREAD_H_

#include <memory>

#include "Utils/Export.h"

namespace utils {

class ORVEX_CORE_API Thread {
 public:
  Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  virtual ~Thread();

  // Starts the thread. A second call logs an error and does nothing. Throws utils::Exception
  // "Could not start thread %p. Error %d" with the platform's error number.
  void start();

  // The body. What it throws ends in the log.
  virtual void run() = 0;

  // Keeps a body that has not begun from being called.
  void cancel();

 protected:
  // Returns whether the thread is no more although its body has not returned. A destructor that
  // waits for what the body sets asks this, too: at the end of a process Windows ends its threads
  // before it destroys its objects. Always false on POSIX.
  [[nodiscard]] bool hasEnded() const;

 private:
  struct State;

  static void enter(Thread& thread) noexcept;

  std::unique_ptr<State> m_state;
};

}  // namespace utils

#endif  // ORVEX_UTILS_THREAD_H_
