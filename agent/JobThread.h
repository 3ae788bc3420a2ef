// The thread of one firmware update: takes the flash lock, writes the image and reports to its job.
//
// Owned by its job. Created, launched once, runs, done; deleted when done, or earlier: then the
// destructor waits, 3 seconds until it complains and after that without limit.
// The flags may be asked from any thread.

#ifndef ORVEX_AGENT_JOBTHREAD_H_
#define ORVEX_AGENT_JOBTHREAD_H_

#include "Utils/Mutex.h"
#include "Utils/Thread.h"
#include "agent/FlashJob.h"
#include "platform/Clock.h"

namespace agent {

// A boolean under a mutex of its own.
class LockedFlag {
 public:
  void set() {
    const utils::ScopedLock lock(m_mutex);
    m_isSet = true;
  }
  [[nodiscard]] bool isSet() const {
    const utils::ScopedLock lock(m_mutex);
    return m_isSet;
  }

 private:
  mutable utils::Mutex m_mutex;
  bool m_isSet ORVEX_GUARDED_BY(m_mutex) = false;
};

// Waits until the flag is set or `milliseconds` are used up, in steps of 50 ms. Returns what is
// left of them, negative when they did not suffice.
int waitForFlag(const LockedFlag& flag, int milliseconds, platform::Clock& clock);

}  // namespace agent

class JobThread : public utils::Thread {
 public:
  // `myJob` and `clock` must outlive the thread. Throws utils::Exception for null.
  JobThread(agent::FlashJob* myJob, platform::Clock& clock);
  ~JobThread() override;

  // Runs the update. The job has its end, and the thread is done, whatever happens meanwhile.
  void run() override;

  // Notes that the update should end, and no more: a flash that is being written is not given up.
  virtual void requestStop();

  // Starts the thread, which counts as started from the attempt on. Throws as start().
  void launch();
  [[nodiscard]] const agent::LockedFlag& getDone() const { return m_done; }

 private:
  [[nodiscard]] bool flash();
  [[nodiscard]] int findTerminationBudget() const;
  void disableIscsiBoot();

  agent::FlashJob* const m_job;
  platform::Clock& m_clock;
  agent::LockedFlag m_done;
  agent::LockedFlag m_stopRequested;  // for a debugger; see requestStop()
  agent::LockedFlag m_started;
  agent::LockedFlag m_launched;             // set once the thread exists
  platform::Clock::TimePoint m_launchTime;  // of the attempt
};

#endif  // ORVEX_AGENT_JOBTHREAD_H_
