// The signals that ask the daemon to stop, taken on a thread of their own.
//
// SIGTERM and SIGINT ask; a signal that the process was started to ignore stays ignored. SIGHUP is
// taken and changes nothing: the agents read their settings at each use. None of them breaks off
// what is running, however often it comes.

#ifndef ORVEX_DAEMON_POSIX_STOPSIGNALS_H_
#define ORVEX_DAEMON_POSIX_STOPSIGNALS_H_

#include <functional>
#include <thread>

#include "platform/Posix/Descriptor.h"

namespace quorveld {

class StopSignals {
 public:
  // Calls `stop`, on its thread, when the first signal comes, at once where it has come already;
  // logs later ones. What `stop` uses outlives the delivery.
  class Delivery {
   public:
    // Throws std::system_error.
    Delivery(const StopSignals& signals, std::function<void()> stop);
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;
    ~Delivery();

   private:
    void serve(int signals) const;

    const std::function<void()> m_stop;
    platform::Descriptor m_end;
    std::thread m_thread;
  };

  // Has the process ignore SIGPIPE, so that a reader of its output may go away, and holds the other
  // signals off from this thread, and so from the threads that it starts later: to be made before
  // there are others. Throws std::system_error.
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

 private:
  platform::Descriptor m_signals;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_STOPSIGNALS_H_
