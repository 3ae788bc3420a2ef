#include "daemon/PeriodicTask.h"

#include <exception>
#include <utility>

#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"PeriodicTask"};

}  // namespace

PeriodicTask::PeriodicTask(std::chrono::milliseconds period, std::function<void()> task)
    : m_period(period), m_task(std::move(task)), m_thread([this] { run(); }) {}

PeriodicTask::~PeriodicTask() {
  {
    const platform::Lock lock(m_mutex);
    m_isOver = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

void PeriodicTask::run() {
  while (waitForTurn()) {
    try {
      m_task();
    } catch (const std::exception& exception) {
      if (m_logged != exception.what()) {
        m_logged = exception.what();
        utils::logError(kLog, "quorveld::PeriodicTask::run", "It is tried again: %s",
                        exception.what());
      }
    }
  }
}

bool PeriodicTask::waitForTurn() {
  const platform::Lock lock(m_mutex);
  const auto end = std::chrono::steady_clock::now() + m_period;
  while (!m_isOver && m_changed.wait_until(m_mutex, end) == std::cv_status::no_timeout) {
  }
  return !m_isOver;
}

}  // namespace quorveld
