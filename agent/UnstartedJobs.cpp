#include "agent/UnstartedJobs.h"

#include <chrono>
#include <exception>
#include <future>
#include <utility>

#include "Utils/Thread.h"

namespace agent {

// Ends jobs on a thread of its own.
class UnstartedJobs::Remover : public utils::Thread {
 public:
  Remover() = default;
  // The body uses the members, which must not go before it has ended.
  ~Remover() override {
    while (m_isStarted && !isDone() && !hasEnded()) {
      m_end.wait_for(kPoll);
    }
  }

  // Takes the jobs over. Throws as start(), and leaves them then.
  void launch(Jobs& jobs) {
    m_jobs.swap(jobs);
    try {
      start();
    } catch (const std::exception&) {
      m_jobs.swap(jobs);
      throw;
    }
    m_isStarted = true;
  }

  [[nodiscard]] bool isDone() const {
    return m_end.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }

  void run() override {
    m_jobs.clear();
    m_done.set_value();
  }

 private:
  static constexpr std::chrono::milliseconds kPoll{50};

  Jobs m_jobs;
  bool m_isStarted = false;
  std::promise<void> m_done;
  const std::shared_future<void> m_end{m_done.get_future()};
};

UnstartedJobs::UnstartedJobs() = default;

UnstartedJobs::~UnstartedJobs() = default;

void UnstartedJobs::add(std::unique_ptr<Orvex_ConcreteJob> job) {
  const utils::ScopedLock lock(m_mutex);
  m_waiting.push_back(std::move(job));
  tidyUp();
}

void UnstartedJobs::tidyUp() {
  const utils::ScopedLock lock(m_mutex);
  if (m_remover != nullptr && m_remover->isDone()) {
    m_remover.reset();
  }
  if (m_remover != nullptr || m_waiting.empty()) {
    return;
  }
  try {
    auto remover = std::make_unique<Remover>();
    remover->launch(m_waiting);
    m_remover = std::move(remover);
  } catch (const std::exception&) {
    // It is in the log; the jobs wait for a better time.
  }
}

}  // namespace agent
