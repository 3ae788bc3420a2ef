#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

#include "daemon/RunningJobs.h"
#include "tests/support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;

class RunningJobs : public testing::Test {
 protected:
  std::function<unsigned()> m_count = [this] { return ++m_counts; };
  unsigned m_counts = 0;
  std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
  quorveld::RunningJobs m_jobs{[this] { return m_count(); }, [this] { return m_now; },
                               test::kDeadline};
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
  quorveld::RunningJobs jobs([this] { return m_count(); }, [this] { return m_now; },
                             milliseconds(1));
  std::promise<void> turn;
  m_count = [&turn] {
    turn.get_future().wait();
    return 7U;
  };
  EXPECT_EQ(jobs.get(), std::nullopt);
  EXPECT_EQ(jobs.get(), std::nullopt);
  turn.set_value();
  EXPECT_TRUE(test::waitUntil([&jobs] { return jobs.get() == 7U; }));

  std::promise<void> next;
  m_count = [&next] {
    next.get_future().wait();
    return 8U;
  };
  m_now += milliseconds(1000);
  EXPECT_EQ(jobs.get(), 7U);
  next.set_value();
  EXPECT_TRUE(test::waitUntil([&jobs] { return jobs.get() == 8U; }));
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
