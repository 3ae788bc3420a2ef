#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "agent/UnstartedJobs.h"
#include "tests/agent/ConcreteJobFixture.h"
#include "tests/agent/NoMoreThreads.h"
#include "tests/support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;

// The job's end waits by the test's clock.
class UnstartedJobsTest : public test::ConcreteJobFixture {
 protected:
  std::unique_ptr<Orvex_ConcreteJob> takeJobThatDidNotStart() {
    makeJobByTheClock();
    const test::NoMoreThreads noMoreThreads;
    EXPECT_EQ(request(2), 4u);
    return std::move(m_job);
  }

  // Returns how many jobs have waited for their threads to the end.
  int countEnds() { return m_clock.sleeps()[milliseconds(50)] / 60; }
  // Returns how many threads that never were have been given up.
  int countGone() const {
    int count = 0;
    for (const std::string& message : m_log.messages("JobThread::~JobThread")) {
      count += message.ends_with("terminating timeout error") ? 1 : 0;
    }
    return count;
  }
  bool awaitEnds(int count) {
    return test::waitUntil([this, count] { return countEnds() == count; });
  }
};

TEST_F(UnstartedJobsTest, EndWhileNobodyWaitsForThem) {
  bool isHeld = true;
  agent::UnstartedJobs jobs;
  m_clock.afterEachSleep([&](int) {
    if (isHeld) {
      EXPECT_TRUE(test::waitUntil([this] { return m_midApi.progress == 1; }));
      isHeld = false;
    }
  });
  jobs.add(takeJobThatDidNotStart());
  EXPECT_LT(countEnds(), 1);
  m_midApi.progress = 1;
  EXPECT_TRUE(awaitEnds(1));
}

TEST_F(UnstartedJobsTest, EndOneAfterTheOther) {
  agent::UnstartedJobs jobs;
  jobs.add(takeJobThatDidNotStart());
  EXPECT_TRUE(awaitEnds(1));
  jobs.add(takeJobThatDidNotStart());
  EXPECT_TRUE(test::waitUntil([&] {
    jobs.tidyUp();
    return countEnds() == 2;
  }));
}

TEST_F(UnstartedJobsTest, JoinThoseThatAreBeingEnded) {
  bool isHeld = true;
  agent::UnstartedJobs jobs;
  std::unique_ptr<Orvex_ConcreteJob> second = takeJobThatDidNotStart();
  m_clock.afterEachSleep([&](int) {
    if (isHeld) {
      EXPECT_TRUE(test::waitUntil([this] { return m_midApi.progress == 1; }));
      isHeld = false;
    }
  });
  jobs.add(takeJobThatDidNotStart());
  EXPECT_TRUE(test::waitUntil([this] { return m_clock.sleeps()[milliseconds(50)] == 1; }));
  jobs.add(std::move(second));
  EXPECT_EQ(m_clock.sleeps()[milliseconds(50)], 1);  // who adds does not wait for the first
  m_midApi.progress = 1;
  EXPECT_TRUE(test::waitUntil([&] {
    jobs.tidyUp();
    return countGone() == 2;
  }));
}

TEST_F(UnstartedJobsTest, WaitUntilThreadsCanBeStartedAgain) {
  agent::UnstartedJobs jobs;
  {
    std::unique_ptr<Orvex_ConcreteJob> job = takeJobThatDidNotStart();
    const test::NoMoreThreads noMoreThreads;
    jobs.add(std::move(job));
    jobs.tidyUp();
    EXPECT_EQ(countEnds(), 0);
  }
  jobs.tidyUp();
  EXPECT_TRUE(awaitEnds(1));
}

// The time that a thread has to end begins when it should have been started.
TEST_F(UnstartedJobsTest, EndTogetherWhereTheirTimeIsOver) {
  auto jobs = std::make_unique<agent::UnstartedJobs>();
  std::vector<std::unique_ptr<Orvex_ConcreteJob>> notStarted(5);
  for (auto& job : notStarted) {
    job = takeJobThatDidNotStart();
  }
  {
    const test::NoMoreThreads noMoreThreads;
    for (auto& job : notStarted) {
      jobs->add(std::move(job));
    }
  }
  jobs.reset();
  EXPECT_EQ(countEnds(), 1);
}

TEST_F(UnstartedJobsTest, EndWithTheirOwner) {
  auto jobs = std::make_unique<agent::UnstartedJobs>();
  {
    std::unique_ptr<Orvex_ConcreteJob> job = takeJobThatDidNotStart();
    const test::NoMoreThreads noMoreThreads;
    jobs->add(std::move(job));
  }
  jobs.reset();
  EXPECT_EQ(countEnds(), 1);
}

}  // namespace
