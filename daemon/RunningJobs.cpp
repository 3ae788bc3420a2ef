#include "daemon/RunningJobs.h"

#include <utility>

namespace quorveld {
namespace {

constexpr std::chrono::seconds kLongestAge{1};

}  // namespace

RunningJobs::RunningJobs(Count count, Clock clock)
    : m_count(std::move(count)), m_clock(std::move(clock)) {}

RunningJobs::~RunningJobs() = default;

unsigned RunningJobs::get() {
  if (const std::optional<unsigned> known = findOrBegin()) {
    return *known;
  }
  // Ends the counting, also when it fails.
  struct Counting {
    RunningJobs& jobs;
    std::optional<unsigned> number;
    ~Counting() {
      const utils::ScopedLock lock(jobs.m_mutex);
      --jobs.m_counting;
      if (number) {
        jobs.m_last = number;
        jobs.m_taken = jobs.m_clock();
      }
    }
  };
  Counting counting{*this, std::nullopt};
  counting.number = m_count();
  return *counting.number;
}

std::optional<unsigned> RunningJobs::findOrBegin() {
  const utils::ScopedLock lock(m_mutex);
  if (m_last && (m_counting > 0 || m_clock() - m_taken < kLongestAge)) {
    return m_last;
  }
  ++m_counting;
  return std::nullopt;
}

}  // namespace quorveld
