#include "daemon/PeriodicTask.h"

#include <exception>
#include <new>
#include <utility>

#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"PeriodicTask"};

}  // namespace

PeriodicTask::PeriodicTask(std::chrono::milliseconds period, std::function<void()> task)
    : m_period(period), m_task(std::move(task)), m_thread([this] { run(); }) {}

PeriodicTask::~PeriodicTask() {
  end();
  m_thread.join();
}

void PeriodicTask::end() {
  {
    const platform::Lock lock(m_mutex);
    m_isOver = true;
  }
  m_changed.notify_all();
}

void PeriodicTask::run() {
  while (waitForTurn()) {
    try {
      m_task();
    } catch (const std::exception& exception) {
      logOnce(exception.what());
    } catch (...) {
      logOnce("exception of no standard type");
    }
  }
}

void PeriodicTask::logOnce(const char* text) noexcept {
  if (m_logged == text) {
    return;
  }
  utils::logError(kLog, "quorveld::PeriodicTask::run", "It is tried again: %s", text);
  try {
    m_logged = text;
  } catch (const std::bad_alloc&) {
    m_logged.clear();  // rather once too often
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
