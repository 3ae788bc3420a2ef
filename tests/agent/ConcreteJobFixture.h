// A new job on an adapter, with the flash library and the system that the test plays.

#ifndef ORVEX_TESTS_AGENT_CONCRETEJOBFIXTURE_H_
#define ORVEX_TESTS_AGENT_CONCRETEJOBFIXTURE_H_

#include <cstdint>
#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_ConcreteJob.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/WaitUntil.h"

namespace test {

constexpr const char* kAdapter = "0000:03:00.0";

class ConcreteJobFixture : public testing::Test {
 public:
  ~ConcreteJobFixture() override {
    m_midApi.releaseWrites();
    m_job.reset();
    agent::clearTargetInProgress();
  }

 protected:
  std::unique_ptr<Orvex_ConcreteJob> makeJob(platform::Clock& clock = platform::steadyClock()) {
    return std::make_unique<Orvex_ConcreteJob>(
        kAdapter, 7,
        agent::VerifiedImage{bytesOf("image"),
                             {utils::FirmwareType::Pxe, utils::FirmwareType::Iscsi},
                             agent::TargetReservation(kAdapter)},
        clock);
  }

  // Puts a job in the place of the first that waits by m_clock.
  void makeJobByTheClock() {
    m_job.reset();
    m_job = makeJob(m_clock);
  }

  std::uint32_t request(std::uint16_t state) {
    return m_job->requestStateChange(state, utils::Datetime(0));
  }

  bool deleteThread() { return m_job->threadControl(Orvex_ConcreteJob::kDeleteThread, 0); }

  // Starts the job and waits until its thread is in the flash library, where it stays.
  void startAndHold() {
    m_midApi.holdWrites();
    ASSERT_EQ(request(2), 0u);
    ASSERT_TRUE(m_midApi.awaitHeldWrite());
  }

  // Lets the job end and deletes its thread.
  void finish() {
    m_midApi.releaseWrites();
    ASSERT_TRUE(waitUntil([this] { return deleteThread(); }));
  }

  void change(int state) { m_job->setJobState(static_cast<cim::JobState>(state)); }

  PlacedLog m_log;
  FakeConfig m_config;
  FakeLocker m_locker;
  FakeMidApi m_midApi;
  FakeClock m_clock;
  std::unique_ptr<Orvex_ConcreteJob> m_job = makeJob();
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_CONCRETEJOBFIXTURE_H_
