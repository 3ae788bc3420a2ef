#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/client/FakeAgent.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/StartedJobs.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr const char* kPath = "Orvex_ConcreteJob.InstanceID=\"job 1\"";
constexpr std::uint16_t kRunning = 4;
constexpr std::uint16_t kCompleted = 7;
constexpr std::uint16_t kException = 10;

class StartedJobs : public testing::Test {
 protected:
  StartedJobs() { m_broker.addAgent(&m_agent); }

  // Starts a job that goes through these states, one with each look.
  test::FakeJob& start(const std::vector<test::FakeJob::Look>& looks) {
    auto job = std::make_unique<test::FakeJob>(looks);
    test::FakeJob& started = *job;
    m_provider.add(std::move(job));
    m_provider.onEnumeration = [&started] { started.moveOn(); };
    wbem::Installation installation;
    installation.adapter = "0000:03:00.0";
    installation.oldVersions = "IMG_PXE 0.1";
    installation.job = "job 1";
    m_started.add(m_caller, kPath, installation);
    return started;
  }

  core::CimBroker m_broker;
  test::FakeAgent m_agent;
  test::FakeProvider& m_provider = m_agent.serve("Orvex_ConcreteJob");
  test::RecordingAudit m_audit;
  wbem::Caller m_caller{"ann", "192.0.2.7", wbem::Role::Operator};
  wbem::StartedJobs m_started{m_broker, m_audit};
};

TEST_F(StartedJobs, HaveOneRecordOfTheirEnd) {
  start({{kRunning, 10}, {kRunning, 50}, {kCompleted, 100}});
  m_started.recordEnds();
  m_started.recordEnds();
  EXPECT_THAT(m_audit.records, IsEmpty());
  m_started.recordEnds();
  m_started.recordEnds();
  ASSERT_THAT(m_audit.records, SizeIs(1));
  const wbem::AuditRecord& record = m_audit.records.front();
  EXPECT_EQ(record.caller.user, "ann");
  EXPECT_EQ(record.action, "JobEnd");
  EXPECT_EQ(record.result, "Completed");
  EXPECT_EQ(record.target, kPath);
  EXPECT_THAT(record.details, ElementsAre(Pair("adapter", "0000:03:00.0"),
                                          Pair("old", "IMG_PXE 0.1"), Pair("job", "job 1")));
}

TEST_F(StartedJobs, TellTheirError) {
  test::FakeJob& job = start({{kException, 40}});
  job.ErrorCode.setValue(4);
  job.ErrorDescription.setValue("Timeout Error");
  m_started.recordEnds();
  ASSERT_THAT(m_audit.records, SizeIs(1));
  EXPECT_EQ(m_audit.records.front().result, "Exception, error 4: Timeout Error");
}

TEST_F(StartedJobs, TellThatTheyAreGone) {
  start({{kRunning, 10}});
  m_provider.onEnumeration = [] {};
  m_provider.clear();
  m_started.recordEnds();
  ASSERT_THAT(m_audit.records, SizeIs(1));
  EXPECT_THAT(m_audit.records.front().result, HasSubstr("gone"));
}

TEST_F(StartedJobs, AreLookedAtAgainAfterAFailure) {
  test::FakeJob& job = start({{kCompleted, 100}});
  m_provider.onEnumeration = [] { throw std::runtime_error("no luck"); };
  EXPECT_THROW(m_started.recordEnds(), std::runtime_error);
  m_provider.onEnumeration = [&job] { job.moveOn(); };
  m_started.recordEnds();
  EXPECT_THAT(m_audit.records, SizeIs(1));
}

}  // namespace
