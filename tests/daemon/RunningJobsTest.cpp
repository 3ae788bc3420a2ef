#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

#include "daemon/RunningJobs.h"

namespace {

using std::chrono::milliseconds;

class RunningJobs : public testing::Test {
 protected:
  std::function<unsigned()> m_count = [this] { return ++m_counts; };
  unsigned m_counts = 0;
  std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
  quorveld::RunningJobs m_jobs{[this] { return m_count(); }, [this] { return m_now; }};
};

TEST_F(RunningJobs, AreCountedOnceASecond) {
  EXPECT_EQ(m_jobs.get(), 1U);
  m_now += milliseconds(999);
  EXPECT_EQ(m_jobs.get(), 1U);
  m_now += milliseconds(1);
  EXPECT_EQ(m_jobs.get(), 2U);
  EXPECT_EQ(m_jobs.get(), 2U);
  EXPECT_EQ(m_counts, 2U);
}

TEST_F(RunningJobs, AreToldAsBeforeWhileTheyAreCounted) {
  EXPECT_EQ(m_jobs.get(), 1U);
  m_now += milliseconds(1000);
  unsigned meanwhile = 0;
  m_count = [this, &meanwhile] {
    m_now += milliseconds(5000);  // the count waits for its turn
    meanwhile = m_jobs.get();
    return 7U;
  };
  EXPECT_EQ(m_jobs.get(), 7U);
  EXPECT_EQ(meanwhile, 1U);
  EXPECT_EQ(m_jobs.get(), 7U);
}

TEST_F(RunningJobs, AreCountedAnewWhenACountFailed) {
  EXPECT_EQ(m_jobs.get(), 1U);
  m_now += milliseconds(1000);
  const std::function<unsigned()> works = m_count;
  m_count = []() -> unsigned { throw std::runtime_error("no list"); };
  EXPECT_THROW(static_cast<void>(m_jobs.get()), std::runtime_error);
  m_count = works;
  EXPECT_EQ(m_jobs.get(), 2U);
}

}  // namespace
