#include <gmock/gmock.h>

#include "client/BrokerConnection.h"
#include "client/Fault.h"
#include "client/Jobs.h"
#include "tests/client/FakeAgent.h"

namespace {

using std::chrono::seconds;
using testing::SizeIs;

// A job of the update agent with what a list of jobs shows.
class UpdateJob : public test::FakeInstance {
 public:
  UpdateJob(const std::string& id, cim::JobState state) : FakeInstance("Orvex_ConcreteJob", id) {
    JobState.setValue(static_cast<std::uint16_t>(state));
    PercentComplete.setValue(40);
    ErrorCode.setValue(17);
    ErrorDescription.setValue("Stuck");
  }

  core::CimPropertyUint16 JobState{"JobState", this};
  core::CimPropertyUint16 PercentComplete{"PercentComplete", this};
  core::CimPropertyDatetime ElapsedTime{"ElapsedTime", this};
  core::CimPropertyUint16 ErrorCode{"ErrorCode", this};
  core::CimPropertyString ErrorDescription{"ErrorDescription", this};
};

class JobsTest : public testing::Test {
 protected:
  JobsTest() {
    m_broker.addAgent(&m_agent);
    add("Orvex:FirmwareUpdate@Job#1", cim::JobState::Completed);
    add("Orvex:FirmwareUpdate@Job#12", cim::JobState::Running)
        .ElapsedTime.setValue(utils::Datetime(61'500'000));
  }

  UpdateJob& add(const std::string& id, cim::JobState state) {
    auto job = std::make_unique<UpdateJob>(id, state);
    UpdateJob& added = *job;
    m_jobs.add(std::move(job));
    return added;
  }

  // Returns the InstanceID of the job that a text names, or the message of the fault.
  std::string find(const std::string& text) {
    try {
      return client::findJob(m_connection, text, ": ask a host").id;
    } catch (const client::Fault& fault) {
      EXPECT_EQ(fault.kind(), client::Fault::Kind::Refused);
      return fault.what();
    }
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeAgent m_agent;
  test::FakeProvider& m_jobs = m_agent.serve("Orvex_ConcreteJob");
};

TEST_F(JobsTest, AreReadWithWhatTheyTell) {
  const std::vector<client::Job> jobs = client::readJobs(m_connection);
  ASSERT_THAT(jobs, SizeIs(2));
  EXPECT_EQ(jobs[0].id, "Orvex:FirmwareUpdate@Job#1");
  EXPECT_EQ(jobs[0].age, std::nullopt);
  EXPECT_EQ(jobs[1].age, seconds(61));
  EXPECT_EQ(jobs[1].report.state, cim::JobState::Running);
  EXPECT_EQ(jobs[1].report.percent, 40U);
  EXPECT_EQ(jobs[1].report.errorCode, 17U);
  EXPECT_EQ(jobs[1].report.errorText, "Stuck");
  EXPECT_EQ(jobs[1].report.path, "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#12\"");
}

TEST_F(JobsTest, AreFoundByIdNumberAndPath) {
  for (const char* text :
       {"Orvex:FirmwareUpdate@Job#12", "12",
        "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#12\"",
        "root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#12\""}) {
    EXPECT_EQ(find(text), "Orvex:FirmwareUpdate@Job#12") << text;
  }
  EXPECT_EQ(find("1"), "Orvex:FirmwareUpdate@Job#1");
}

TEST_F(JobsTest, AreListedWhenATextNamesNone) {
  for (const char* text : {"2", "", "#1", "Orvex_ConcreteJob.InstanceID=\"2\""}) {
    EXPECT_EQ(find(text), std::string("there is no job '") + text +
                              "'; the jobs are:\n  Orvex:FirmwareUpdate@Job#1 (Completed)\n"
                              "  Orvex:FirmwareUpdate@Job#12 (Running)");
  }
}

TEST_F(JobsTest, AreListedWithoutCommandsToTheTerminal) {
  m_jobs.clear();
  add("job\x1b[2J", cim::JobState::Running);
  EXPECT_EQ(find("1"), "there is no job '1'; the jobs are:\n  job\\x1b[2J (Running)");
}

TEST_F(JobsTest, AreMissedWhereThereIsNone) {
  m_jobs.clear();
  EXPECT_EQ(find("1"), "there is no job '1'; jobs of this program end with it: ask a host");
}

TEST(JobInterval, IsReadInCimForm) {
  EXPECT_EQ(client::parseInterval("00000000000042.000000:000"), seconds(42));
  EXPECT_EQ(client::parseInterval("00000002030405.999999:000"),
            seconds(((2 * 24 + 3) * 60 + 4) * 60 + 5));
  for (const char* text :
       {"", "42", "20260102030405.000000+000", "0000000000004x.000000:000",
        "00000000-10042.000000:000", "00000000000061.000000:000", "00000367000000.000000:000",
        "99999999235959.999999:000", "99999999999999.000000:000"}) {
    EXPECT_EQ(client::parseInterval(text), std::nullopt) << text;
  }
}

}  // namespace
