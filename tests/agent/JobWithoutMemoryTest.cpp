// Updates for which memory runs out, at each of their allocations in its turn.

#include <cstdint>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Utils/Log.h"
#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_ConcreteJobClass.h"
#include "cim/InstallOptions.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/agent/LeastAllocations.h"
#include "tests/agent/ProviderMemory.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

constexpr const char* kAdapter = "0000:03:00.0";

// A log that needs no memory of its own.
class NoLog : private utils::LogSinks {
 public:
  NoLog() : m_previous(utils::exchangeLogSinks(this)) {}
  ~NoLog() override { utils::exchangeLogSinks(m_previous); }

 private:
  void writeEventLog(const std::string& /*line*/) noexcept override {}
  void writeDebugChannel(const std::string& /*line*/) noexcept override {}
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  utils::LogSinks* m_previous;
};

class JobWithoutMemory : public testing::Test {
 public:
  ~JobWithoutMemory() override { agent::clearTargetInProgress(); }

 protected:
  void SetUp() override {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
    GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  }

  // Does `act` with the number of each allocation, until one round has none of that number.
  // Returns how many there were.
  template <class Act>
  static int tryEach(Act act) {
    for (int passed = 0;; ++passed) {
      SCOPED_TRACE(passed);
      const int before = test::countRefusedMemory();
      act(passed);
      if (test::countRefusedMemory() == before || testing::Test::HasFailure()) {
        return passed;
      }
    }
  }

  static bool awaitFreeTarget() {
    return test::waitUntil([] { return agent::getTargetInProgress().empty(); });
  }

  const NoLog m_log;
  test::FakeConfig m_config;
  test::FakeLocker m_locker;
  test::FakeMidApi m_midApi;
  test::FakeClock m_clock;
};

TEST_F(JobWithoutMemory, HasItsEndWhateverItsThreadGetsNoneFor) {
  const int count = tryEach([this](int passed) {
    m_clock.afterEachSleep([passed](int) { test::refuseMemoryOnce(passed); });
    Orvex_ConcreteJob job(
        kAdapter, 1,
        agent::VerifiedImage{
            test::bytesOf("image"), {utils::FirmwareType::Pxe}, agent::TargetReservation(kAdapter)},
        m_clock);
    ASSERT_TRUE(job.threadControl(Orvex_ConcreteJob::kStartThread, 0));
    ASSERT_TRUE(
        test::waitUntil([&job] { return job.threadControl(Orvex_ConcreteJob::kDeleteThread, 0); }));
    EXPECT_TRUE(job.isFinished());
    EXPECT_EQ(agent::getTargetInProgress(), "");
    EXPECT_FALSE(m_locker.isHeld());
  });
  EXPECT_GE(count, test::kLeastOfJobThread);
}

TEST_F(JobWithoutMemory, IsWhollyMadeOrNotAtAll) {
  const test::TempDirectory directory;
  const std::string uri = "file://" + directory.write("image.rom", std::string("rom")).string();
  const std::vector<std::uint16_t> options{cim::kUpdate};
  const int count = tryEach([&](int passed) {
    Orvex_ConcreteJobClass provider(m_clock);
    core::CimInstance* job = nullptr;
    bool isMade = false;
    test::refuseMemoryOnce(passed);
    try {
      isMade = provider.verifyOrCreateNewJob(kAdapter, uri, options, {}, job, true) == 0;
    } catch (const std::bad_alloc&) {
      isMade = false;
    }
    test::refuseMemoryOnce(-1);
    EXPECT_EQ(job != nullptr, isMade);
    EXPECT_EQ(provider.getInstances().count() == 1, isMade);
    EXPECT_TRUE(awaitFreeTarget());
  });
  EXPECT_GE(count, test::kLeastOfNewJob);
}

}  // namespace
