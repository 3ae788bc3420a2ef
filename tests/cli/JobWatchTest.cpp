#include <csignal>
#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <iostream>
#include <sstream>

#include "Os/OSLocker.h"
#include "Os/QuorvelConfig.h"
#include "cli/JobWatch.h"
#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "tests/cli/EndedBySignal.h"
#include "tests/client/FakeAgent.h"
#include "tests/support/Regex.h"

namespace {

using client::JobReport;
using testing::StartsWith;

constexpr auto kStarting = static_cast<std::uint16_t>(cim::JobState::Starting);
constexpr auto kRunning = static_cast<std::uint16_t>(cim::JobState::Running);
constexpr auto kCompleted = static_cast<std::uint16_t>(cim::JobState::Completed);
constexpr auto kException = static_cast<std::uint16_t>(cim::JobState::Exception);

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
    cli::InterruptGuard guard(cli::Stops::Held);
    return cli::waitForJob(m_connection, kJobPath, view, guard, m_err);
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_jobs = m_agent.serve("Orvex_ConcreteJob");
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(JobWatchTest, FollowsAJobToItsEnd) {
  addJob({{kStarting, 0}, {kRunning, 50}, {kCompleted, 100}});
  const JobReport report = wait();
  EXPECT_TRUE(report.isCompleted());
  EXPECT_EQ(report.outcome(), "Completed");
  EXPECT_EQ(report.path, kJobPath);
  EXPECT_EQ(cli::propertiesOf(report).find("JobState")->as<int>(), 7);
  EXPECT_EQ(m_out.str(), "job: 0 %, 00:00\njob: 50 %, 00:00\njob: 100 %, 00:00\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(JobWatchTest, TellsHowAJobFailed) {
  test::FakeJob& job = addJob({{kException, 100}});
  job.ErrorCode.setValue(17);
  job.ErrorDescription.setValue("Sector stuck");
  const JobReport report = wait();
  EXPECT_FALSE(report.isCompleted());
  EXPECT_EQ(report.outcome(), "Exception, error 17: Sector stuck");
}

TEST_F(JobWatchTest, WaitsOnWhenItIsInterrupted) {
  test::FakeJob& job = addJob({{kRunning, 10}, {kCompleted, 100}});
  m_jobs.onEnumeration = [&job] {
    job.moveOn();
    if (job.JobState.getValue() == kRunning) {
      std::raise(SIGINT);
    }
  };
  EXPECT_TRUE(wait().isCompleted());
  EXPECT_EQ(m_err.str(),
            "quorvel: interrupted: the flash is being written and cannot be left half done; "
            "waiting for its end\n");
}

#ifdef SIGTSTP
TEST_F(JobWatchTest, RefusesToBeStopped) {
  test::FakeJob& job = addJob({{kRunning, 10}, {kCompleted, 100}});
  m_jobs.onEnumeration = [&job] {
    job.moveOn();
    if (job.JobState.getValue() == kRunning) {
      std::raise(SIGTSTP);
    }
  };
  EXPECT_TRUE(wait().isCompleted());
  EXPECT_EQ(m_err.str(),
            "quorvel: the stop is refused: a stopped program would keep the machine's flash from "
            "all others, and this one half written\n");
}
#endif

// A flash lock that another has.
class TakenLocker : public os::OSLocker {
 public:
  // Waits until `act` returns, in vain.
  void waitInVain(std::function<void()> act) {
    m_act = std::move(act);
    EXPECT_EQ(Lock(), 3);
  }
  void fail(const std::string& reason) {
    m_result = WaitResult::Failed;
    m_act = [this, reason] { noteFailure(reason); };
    EXPECT_EQ(Lock(), 1);
  }
  void beHad() {
    m_result = WaitResult::Signalled;
    EXPECT_EQ(Lock(), 0);
  }

 protected:
  [[nodiscard]] bool hasSemaphore() const override { return true; }
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t /*milliseconds*/) override {
    if (m_result == WaitResult::TimedOut) {
      noteWait(os::LockHolder{"tool", 4711, "root", std::chrono::steady_clock::now()});
    }
    m_act();
    return m_result;
  }
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override { return std::nullopt; }

 private:
  std::function<void()> m_act = [] {};
  WaitResult m_result = WaitResult::TimedOut;
};

class TakenFlashTest : public JobWatchTest {
 protected:
  utils::QuorvelConfig m_config{""};
  TakenLocker m_locker;
};

TEST_F(TakenFlashTest, IsWaitedForInTheProgress) {
  addJob({{kRunning, 0}, {kCompleted, 100}});
  m_locker.waitInVain([this] { EXPECT_EQ(wait().flashHolder, ""); });
  EXPECT_THAT(m_out.str(),
              test::MatchesRegex("job: waiting for the flash: tool, process 4711, user root, for "
                                 "00:0[0-9]\n"));
}

class TakenFlashDeathTest : public TakenFlashTest {};

TEST_F(TakenFlashDeathTest, LetsAnInterruptEndTheProcess) {
  addJob({{kRunning, 0}, {kRunning, 0}});
  m_jobs.onEnumeration = [] { std::raise(SIGINT); };
  const auto waitForTheFlash = [this] {
    std::signal(SIGINT, SIG_DFL);  // whoever started the test may have it ignored
    cli::ProgressView view(m_out, cli::ProgressStyle::Lines, "job");
    cli::InterruptGuard guard(cli::Stops::Held);
    m_locker.waitInVain([&] {
      static_cast<void>(cli::waitForJob(m_connection, kJobPath, view, guard, std::cerr));
    });
  };
  EXPECT_EXIT(waitForTheFlash(), test::EndedBySignal(SIGINT),
              "quorvel: interrupted before the flash could be had: nothing was written");
}

TEST_F(TakenFlashTest, IsWrittenToItsEndOnceItIsHad) {
  test::FakeJob& job = addJob({{kRunning, 10}, {kCompleted, 100}});
  m_jobs.onEnumeration = [&job] {
    job.moveOn();
    if (job.JobState.getValue() == kRunning) {
      std::raise(SIGINT);
    }
  };
  m_locker.beHad();
  EXPECT_TRUE(wait().isCompleted());
  EXPECT_THAT(m_err.str(), StartsWith("quorvel: interrupted: the flash is being written"));
}

TEST_F(TakenFlashTest, IsInTheTextOfAJobThatTimedOut) {
  test::FakeJob& job = addJob({{kRunning, 0}, {kException, 100}});
  job.ErrorCode.setValue(4);
  job.ErrorDescription.setValue("Timeout Error");
  m_locker.waitInVain([] {});
  EXPECT_THAT(wait().outcome(),
              test::MatchesRegex("Exception, error 4: Timeout Error .the flash was held by tool, "
                                 "process 4711, user root, for 00:0[0-9]."));
}

TEST_F(TakenFlashTest, IsNotBlamedWhereNoLockCanBeHad) {
  test::FakeJob& job = addJob({{kRunning, 0}, {kException, 100}});
  job.ErrorCode.setValue(4);
  job.ErrorDescription.setValue("Timeout Error");
  m_locker.fail("no locks available");
  EXPECT_EQ(wait().outcome(),
            "Exception, error 4: Timeout Error (the flash lock cannot be had: no locks available)");
}

TEST_F(JobWatchTest, GivesUpOnAJobThatIsGone) {
  try {
    wait();
    FAIL() << "waited for no job";
  } catch (const client::Fault& fault) {
    EXPECT_THAT(fault.what(), StartsWith("the job Orvex_ConcreteJob.InstanceID=\"job 1\" is gone"));
  }
}

// A host that fails at the looks that the test says.
class FakeHostConnection : public client::Connection {
 public:
  [[nodiscard]] std::optional<client::InstanceSnapshot> findInstance(
      const std::string& /*path*/) override {
    ADD_FAILURE() << "a look that may take long";
    return std::nullopt;
  }
  [[nodiscard]] std::optional<client::InstanceSnapshot> lookAgain(
      const std::string& path) override {
    ++looks;
    onLook();
    if (looks > 1 && looks <= 1 + failing) {
      if (isPassing) {
        throw client::PassingFault("nobody answers");
      }
      throw client::Fault("who are you");
    }
    return client::InstanceSnapshot{"Orvex_ConcreteJob", path, properties};
  }
  [[nodiscard]] client::ServingAgents getClasses() override { return {}; }
  [[nodiscard]] std::optional<client::ClassDescription> findClass(
      const std::string& /*name*/) override {
    return std::nullopt;
  }
  [[nodiscard]] std::optional<client::Instances> findInstances(
      const std::string& /*name*/) override {
    return std::nullopt;
  }
  [[nodiscard]] client::Instances findReferencing(const std::string& /*path*/) override {
    return {};
  }
  [[nodiscard]] client::MethodAnswer invoke(const std::string& /*path*/,
                                            const std::string& /*method*/,
                                            core::CimPropertyList& /*in*/,
                                            core::CimPropertyList& /*out*/,
                                            const client::OnStart& /*onStart*/) override {
    return {};
  }
  [[nodiscard]] bool isRemote() const override { return true; }
  [[nodiscard]] std::string program() const override { return "quorvel --host x"; }
  [[nodiscard]] std::string watchCommand(const std::string& jobId) const override {
    return "watch " + jobId;
  }
  [[nodiscard]] std::chrono::milliseconds pollInterval() const override { return {}; }
  [[nodiscard]] std::chrono::milliseconds patience() const override { return patienceTime; }

  std::function<void()> onLook = [] {};
  int looks = 0;
  int failing = 0;  // how many looks behind the first one fail
  bool isPassing = true;
  std::chrono::milliseconds patienceTime = std::chrono::hours(1);
  client::Properties properties = {
      {"JobState", client::PropertySnapshot::Kind::Value, client::Value(kRunning)}};
};

class HostJobWatchTest : public testing::Test {
 protected:
  void endJob() { m_host.properties[0].value = client::Value(kCompleted); }
  // Says when the job began.
  void begin(const char* time) {
    m_host.properties.resize(1);
    m_host.properties.push_back(
        {"StartTime", client::PropertySnapshot::Kind::Datetime, client::Value(std::string(time))});
  }

  // Returns the message of the fault that ends the wait.
  std::string faultOfWait() {
    cli::ProgressView view(m_out, cli::ProgressStyle::Live, "job");
    cli::InterruptGuard guard;
    try {
      static_cast<void>(cli::waitForJob(m_host, kJobPath, view, guard, m_err));
    } catch (const client::Fault& fault) {
      EXPECT_THAT(m_out.str(), testing::EndsWith("\n"));
      return fault.what();
    }
    return "";
  }

  FakeHostConnection m_host;
  std::ostringstream m_out;
  std::ostringstream m_err;
};

TEST_F(HostJobWatchTest, GoesOnWhenTheHostAnswersAgain) {
  m_host.failing = 3;
  m_host.onLook = [this] {
    if (m_host.looks == 6) {
      endJob();
    }
  };
  EXPECT_EQ(faultOfWait(), "");
  EXPECT_EQ(m_host.looks, 6);
}

// A host that was started again begins to count its jobs anew.
TEST_F(HostJobWatchTest, DoesNotFollowAnotherJobOfThatName) {
  begin("20261122160600.480000+000");
  m_host.onLook = [this] {
    if (m_host.looks == 2) {
      begin("20261122160631.120000+000");
      endJob();
    }
  };
  EXPECT_EQ(faultOfWait(), "the job " + std::string(kJobPath) +
                               " is gone; 'quorvel --host x adapters' shows what the adapter "
                               "holds");
}

TEST_F(HostJobWatchTest, KnowsItsJobWhereTheClocksAreChanged) {
  begin("20261025025900.480000+120");
  m_host.onLook = [this] {
    if (m_host.looks == 2) {
      begin("20261025015900.480000+060");
      endJob();
    }
  };
  EXPECT_EQ(faultOfWait(), "");
}

TEST_F(HostJobWatchTest, SaysHowToGoOnWhenTheHostAnswersNoMore) {
  m_host.failing = 1000;
  m_host.patienceTime = {};
  EXPECT_EQ(faultOfWait(),
            "nobody answers\nThe job may go on in the host; to follow it again:\n  watch job 1");
  EXPECT_EQ(m_host.looks, 2);
}

TEST_F(HostJobWatchTest, DoesNotAskAgainWhereThatIsOfNoUse) {
  m_host.failing = 1;
  m_host.isPassing = false;
  EXPECT_EQ(faultOfWait(),
            "who are you\nThe job may go on in the host; to follow it again:\n  watch job 1");
  EXPECT_EQ(m_host.looks, 2);
}

TEST_F(HostJobWatchTest, LeavesTheJobToTheHostWhenItIsInterrupted) {
  m_host.onLook = [this] {
    if (m_host.looks == 2) {
      std::raise(SIGINT);
    }
  };
  EXPECT_EQ(faultOfWait(),
            "interrupted: the job goes on in the host; to follow it again:\n  watch job 1");
}

TEST_F(HostJobWatchTest, IsInterruptedWhileTheHostDoesNotAnswer) {
  m_host.failing = 1000;
  m_host.onLook = [this] {
    if (m_host.looks == 3) {
      std::raise(SIGINT);
    }
  };
  EXPECT_EQ(faultOfWait(),
            "interrupted: the host does not answer at the moment; the job may go on in it; to "
            "follow it again:\n  watch job 1");
  EXPECT_EQ(m_host.looks, 3);
}

TEST(ProgressStyleChoice, IsNothingForJsonOrWhenNotWanted) {
  cli::GlobalOptions options;
  EXPECT_EQ(cli::chooseProgressStyle(options, false), cli::ProgressStyle::None);
  options.isJson = true;
  EXPECT_EQ(cli::chooseProgressStyle(options, true), cli::ProgressStyle::None);
}

}  // namespace
