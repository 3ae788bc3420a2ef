#include "daemon/RunningJobs.h"

#include <utility>

namespace quorveld {
namespace {

constexpr std::chrono::seconds kLongestAge{1};

}  // namespace

RunningJobs::RunningJobs(Count count, Clock clock, std::chrono::milliseconds patience)
    : m_count(std::move(count)),
      m_clock(std::move(clock)),
      m_patience(patience),
      m_thread([this] { run(); }) {}

RunningJobs::~RunningJobs() {
  end();
  m_thread.join();
}

void RunningJobs::end() {
  {
    const platform::Lock lock(m_mutex);
    m_isOver = true;
  }
  m_changed.notify_all();
}

std::optional<unsigned> RunningJobs::get() {
  const platform::Lock lock(m_mutex);
  if (m_last && m_clock() - m_taken < kLongestAge) {
    return m_last;
  }
  m_isWanted = true;
  m_changed.notify_all();
  const std::uint64_t before = m_tries;
  const auto deadline = std::chrono::steady_clock::now() + m_patience;
  while (m_tries == before) {
    if (m_changed.wait_until(m_mutex, deadline) == std::cv_status::timeout) {
      return m_last;
    }
  }
  if (m_failure != nullptr) {
    std::rethrow_exception(m_failure);
  }
  return m_last;
}

void RunningJobs::run() {
  while (waitForWish()) {
    count();
  }
}

bool RunningJobs::waitForWish() {
  const platform::Lock lock(m_mutex);
  while (!m_isWanted && !m_isOver) {
    m_changed.wait(m_mutex);
  }
  return !m_isOver;
}

void RunningJobs::count() {
  std::optional<unsigned> number;
  std::exception_ptr failure;
  try {
    number = m_count();
  } catch (...) {
    failure = std::current_exception();
  }
  const platform::Lock lock(m_mutex);
  // Who has come while it was counted has it, too.
  m_isWanted = false;
  if (number) {
    m_last = number;
    m_taken = m_clock();
  }
  m_failure = std::move(failure);
  ++m_tries;
  m_changed.notify_all();
}

}  // namespace quorveld
