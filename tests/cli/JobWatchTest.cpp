#include <csignal>
#include <gmock/gmock.h>
#include <sstream>

#include "cli/BrokerConnection.h"
#include "cli/JobWatch.h"
#include "tests/cli/FakeAgent.h"

namespace {

using cli::JobReport;
using testing::StartsWith;

constexpr const char* kJobPath = "Orvex_ConcreteJob.InstanceID=\"job 1\"";

class JobWatchTest : public testing::Test {
 protected:
  JobWatchTest() { m_broker.addAgent(&m_agent); }

  // Adds a job that takes these states, one at each look.
  test::FakeJob& addJob(std::vector<test::FakeJob::Look> looks) {
    auto job = std::make_unique<test::FakeJob>(std::move(looks));
    test::FakeJob& added = *job;
    m_jobs.add(std::move(job));
    m_jobs.onEnumeration = [&added] { added.moveOn(); };
    return added;
  }

  JobReport wait() {
    cli::ProgressView view(m_out, cli::ProgressStyle::Lines, "job");
    cli::InterruptGuard guard;
    return cli::waitForJob(m_connection, kJobPath, view, guard, m_err);
  }

  core::CimBroker m_broker;
  cli::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_jobs = m_agent.serve("Orvex_ConcreteJob");
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(JobWatchTest, FollowsAJobToItsEnd) {
  addJob({{cli::kJobStarting, 0}, {cli::kJobRunning, 50}, {cli::kJobCompleted, 100}});
  const JobReport report = wait();
  EXPECT_TRUE(report.isCompleted());
  EXPECT_EQ(report.outcome(), "Completed");
  EXPECT_EQ(report.path, kJobPath);
  EXPECT_EQ(report.properties["JobState"], 7);
  EXPECT_EQ(m_out.str(), "job: 0 %, 00:00\njob: 50 %, 00:00\njob: 100 %, 00:00\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(JobWatchTest, TellsHowAJobFailed) {
  test::FakeJob& job = addJob({{cli::kJobException, 100}});
  job.ErrorCode.setValue(17);
  job.ErrorDescription.setValue("Sector stuck");
  const JobReport report = wait();
  EXPECT_FALSE(report.isCompleted());
  EXPECT_EQ(report.outcome(), "Exception, error 17: Sector stuck");
}

TEST_F(JobWatchTest, WaitsOnWhenItIsInterrupted) {
  test::FakeJob& job = addJob({{cli::kJobRunning, 10}, {cli::kJobCompleted, 100}});
  m_jobs.onEnumeration = [&job] {
    job.moveOn();
    if (job.JobState.getValue() == cli::kJobRunning) {
      std::raise(SIGINT);
    }
  };
  EXPECT_TRUE(wait().isCompleted());
  EXPECT_EQ(m_err.str(),
            "quorvel: interrupted: the flash is being written and cannot be left half done; "
            "waiting for its end\n");
}

TEST_F(JobWatchTest, GivesUpOnAJobThatIsGone) {
  try {
    wait();
    FAIL() << "waited for no job";
  } catch (const cli::Fault& fault) {
    EXPECT_THAT(fault.what(), StartsWith("the job Orvex_ConcreteJob.InstanceID=\"job 1\" is gone"));
  }
}

TEST_F(JobWatchTest, KnowsTheStatesThatEndAJob) {
  for (unsigned state = 0; state < 20; ++state) {
    JobReport report;
    report.state = state;
    EXPECT_EQ(report.hasEnded(), state >= 7 && state <= 10) << state;
  }
}

TEST(JobStateName, IsThatOfTheSchema) {
  EXPECT_EQ(cli::jobStateName(2), "New");
  EXPECT_EQ(cli::jobStateName(6), "Shutting Down");
  EXPECT_EQ(cli::jobStateName(12), "Query Pending");
  EXPECT_EQ(cli::jobStateName(13), "13");
}

TEST(ProgressStyleChoice, IsNothingForJsonOrWhenNotWanted) {
  cli::GlobalOptions options;
  EXPECT_EQ(cli::chooseProgressStyle(options, false), cli::ProgressStyle::None);
  options.isJson = true;
  EXPECT_EQ(cli::chooseProgressStyle(options, true), cli::ProgressStyle::None);
}

}  // namespace
