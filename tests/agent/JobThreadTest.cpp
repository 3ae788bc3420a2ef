#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/JobThread.h"
#include "agent/Orvex_ConcreteJob.h"
#include "cim/MethodSignatures.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PointerPattern.h"
#include "tests/support/Regex.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"
#include "tests/support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;
using test::IsRecordOf;
using test::LogLevel;
using test::LogRecord;
using test::MatchesRegex;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::Pair;
using testing::StartsWith;
using utils::FirmwareType;

constexpr const char* kAdapter = "0000:03:00.0";
constexpr const char* kSource = "JobThread";
constexpr const char* kExecute = "JobThread::execute";

class JobThreadTest : public testing::Test {
 protected:
  using Types = std::vector<FirmwareType>;

  // Starts a job that installs `types`.
  void start(const Types& types) {
    m_job = std::make_unique<Orvex_ConcreteJob>(
        kAdapter, 1,
        agent::VerifiedImage{test::bytesOf("image"), types, agent::TargetReservation(kAdapter)},
        m_clock);
    ASSERT_EQ(m_job->requestStateChange(Orvex_ConcreteJob::kRequestStart, utils::Datetime(0)),
              cim::kStateChanged);
  }

  // Waits for the end of the job's thread.
  void finish() {
    ASSERT_TRUE(test::waitUntil(
        [this] { return m_job->threadControl(Orvex_ConcreteJob::kDeleteThread, 0); }));
    m_job->setPropertyValues();
  }

  void run(const Types& types) {
    start(types);
    finish();
  }

  std::vector<LogRecord> recordsOf(const std::string& source) const {
    std::vector<LogRecord> records;
    for (const LogRecord& record : m_log.records()) {
      if (record.source == source) {
        records.push_back(record);
      }
    }
    return records;
  }

  // Returns where the first record with the message stands in the log, -1 for none.
  int placeOf(const std::string& message) const {
    const std::vector<LogRecord> records = m_log.records();
    for (std::size_t at = 0; at < records.size(); ++at) {
      if (records[at].message.find(message) != std::string::npos) {
        return static_cast<int>(at);
      }
    }
    return -1;
  }

  void expectEnd(cim::JobState state, std::uint16_t code, const std::string& text) {
    EXPECT_EQ(m_job->getJobState(), state);
    EXPECT_TRUE(m_job->isFinished());
    EXPECT_EQ(m_job->ErrorCode.getValue(), code);
    EXPECT_EQ(m_job->ErrorDescription.getValue(), text);
    EXPECT_EQ(m_job->PercentComplete.getValue(), 100);
    EXPECT_EQ(agent::getTargetInProgress(), "");
    EXPECT_FALSE(m_locker->isHeld());
  }

  test::PlacedLog m_log;
  test::FakeConfig m_config;
  std::optional<test::FakeLocker> m_locker{std::in_place};
  test::FakeMidApi m_midApi;
  test::FakeClock m_clock;
  std::unique_ptr<Orvex_ConcreteJob> m_job;
};

TEST_F(JobThreadTest, WantsAJob) {
  EXPECT_THAT([] { const JobThread thread(nullptr, platform::steadyClock()); },
              test::ThrowsExactly<utils::Exception>(test::IsAssertion(kSource, "NULL != myJob")));
  EXPECT_THAT(m_log.messages("JobThread::JobThread"),
              ElementsAre(MatchesRegex("Creating JobThread " + test::kPointerPattern)));
}

TEST_F(JobThreadTest, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(test::slotOf(&JobThread::run), 2u);
  EXPECT_EQ(test::slotOf(&JobThread::requestStop), 3u);
}

TEST_F(JobThreadTest, WritesTheImageAndTheCapabilityWord) {
  run({FirmwareType::Iscsi, FirmwareType::Pxe});

  EXPECT_THAT(m_midApi.calls(), ElementsAre("writeFlashImage 0000:03:00.0 'image'",
                                            "updateCapabilityWord 0000:03:00.0 [2 3]"));
  expectEnd(cim::JobState::Completed, 0, "");
}

TEST_F(JobThreadTest, LogsItsLife) {
  run({FirmwareType::Iscsi});

  const auto debug = [](const std::string& function, const std::string& message) {
    return IsRecordOf(kSource, LogLevel::Debug, function, MatchesRegex(message));
  };
  const std::string thread = "JobThread " + test::kPointerPattern;
  // The thread counts as done before it says so: its destruction may have begun by then.
  std::vector<LogRecord> records = recordsOf(kSource);
  const auto last = std::find_if(records.begin(), records.end(), [](const LogRecord& record) {
    return record.message.ends_with(" finishing");
  });
  ASSERT_NE(last, records.end());
  EXPECT_THAT(*last, debug(kExecute, "Thread " + test::kPointerPattern + " finishing"));
  records.erase(last);
  EXPECT_THAT(records, ElementsAre(debug("JobThread::JobThread", "Creating " + thread),
                                   debug(kExecute, "Thread " + test::kPointerPattern + " starting"),
                                   debug(kExecute, "Writing FLASH Image"),
                                   debug(kExecute, "Updating CapabilityWord"),
                                   debug("JobThread::~JobThread", "Destroying " + thread),
                                   debug("JobThread::~JobThread",
                                         "Destroying " + thread + ", waiting for terminate"),
                                   debug("JobThread::~JobThread", thread + ", terminated")));
}

TEST_F(JobThreadTest, IsDestroyedWithoutWaitingWhenItWasNotStarted) {
  m_job = std::make_unique<Orvex_ConcreteJob>(kAdapter, 1, agent::VerifiedImage());
  m_job.reset();

  EXPECT_THAT(m_log.messages("JobThread::~JobThread"),
              ElementsAre(MatchesRegex("Destroying JobThread " + test::kPointerPattern)));
}

TEST_F(JobThreadTest, GoesThroughTheStatesInOrder) {
  run({FirmwareType::Iscsi});

  EXPECT_THAT(m_log.messages("Orvex_ConcreteJob::setJobState"),
              ElementsAre("2 -> 3", "3 -> 4", "4 -> 7"));
}

// Notes whether its thread says that it is done when the job gets a state, and when the thread's
// last record is written.
class WatchedEnd final : public agent::FlashJob, private utils::LogSinks {
 public:
  WatchedEnd() : m_previous(utils::exchangeLogSinks(this)) {}
  ~WatchedEnd() override { utils::exchangeLogSinks(m_previous); }

  [[nodiscard]] std::string getTarget() const override { return kAdapter; }
  [[nodiscard]] std::vector<FirmwareType> getTargetTypes() const override {
    return {FirmwareType::Iscsi};
  }
  [[nodiscard]] const std::vector<std::uint8_t>& getImage() const override { return m_image; }
  void setError(std::uint32_t /*code*/, const std::string& /*text*/) noexcept override {}
  void setJobState(cim::JobState newState) noexcept override {
    note("state " + std::to_string(static_cast<int>(newState)));
  }

  JobThread* thread = nullptr;
  std::vector<std::string> events;  // of the thread alone

 private:
  void note(const std::string& event) {
    events.push_back(event + (thread->getDone().isSet() ? ", done" : ""));
  }
  void writeEventLog(const std::string& /*line*/) noexcept override {}
  void writeDebugChannel(const std::string& line) noexcept override {
    if (line.ends_with(" finishing\n")) {
      note("finishing");
    }
  }
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  const std::vector<std::uint8_t> m_image = test::bytesOf("image");
  utils::LogSinks* const m_previous;
};

TEST_F(JobThreadTest, IsDoneBetweenItsJobsEndAndItsLastRecord) {
  for (const bool isWritten : {true, false}) {
    m_midApi.writeAnswer.isDone = isWritten;
    WatchedEnd job;
    JobThread thread(&job, m_clock);
    job.thread = &thread;
    thread.run();

    EXPECT_THAT(job.events,
                ElementsAre("state 4", isWritten ? "state 7" : "state 10", "finishing, done"));
  }
}

TEST_F(JobThreadTest, HoldsTheFlashLockFromTheBootTypesToTheCapabilityWord) {
  m_midApi.installed = {{FirmwareType::Iscsi, {1, 0}}};
  bool isHeldInWrite = false;
  m_midApi.onWrite = [&] { isHeldInWrite = m_locker->isHeld(); };

  run({FirmwareType::Pxe});

  EXPECT_TRUE(isHeldInWrite);
  EXPECT_LT(placeOf("3 -> 4"), placeOf("autolocking semaphore"));
  EXPECT_LT(placeOf("autolocking semaphore"), placeOf("MidApi returns 1 firmwares"));
  EXPECT_LT(placeOf("MidApi returns 1 firmwares"), placeOf("Writing FLASH Image"));
  EXPECT_LT(placeOf("Updating CapabilityWord"), placeOf("autoreleasing semaphore"));
  EXPECT_LT(placeOf("autoreleasing semaphore"), placeOf("4 -> 7"));
}

TEST_F(JobThreadTest, LogsWhatAPersonShouldKnowOfAWriteThatSucceeded) {
  m_midApi.remark = "100% unknown";

  run({FirmwareType::Pxe});

  EXPECT_GE(placeOf("The flash was not compared: 100% unknown"), 0);
  expectEnd(cim::JobState::Completed, 0, "");
}

TEST_F(JobThreadTest, FailedWriteSkipsTheCapabilityWord) {
  m_midApi.writeAnswer = {false, 17, "no flash there"};

  run({FirmwareType::Iscsi});

  EXPECT_THAT(m_midApi.calls(), ElementsAre("writeFlashImage 0000:03:00.0 'image'"));
  EXPECT_EQ(placeOf("Updating CapabilityWord"), -1);
  expectEnd(cim::JobState::Exception, 17, "no flash there");
}

TEST_F(JobThreadTest, MakesAllItsChangesInOneUpdateUnderTheFlashLock) {
  m_midApi.installed = {{FirmwareType::Iscsi, {1, 0}}};
  m_midApi.adapters = {kAdapter};

  run({FirmwareType::Pxe});

  // The queries and boot types, the write, and the capability word.
  EXPECT_EQ(m_midApi.calls().size(), 7u);
  EXPECT_EQ(m_midApi.updates(),
            "begin 0000:03:00.0 after 0 calls; end 0000:03:00.0 after 7 calls; ");
}

TEST_F(JobThreadTest, EndsItsUpdateWhenTheWriteFails) {
  m_midApi.onWrite = [] { throw std::runtime_error("broken"); };

  run({FirmwareType::Iscsi});

  EXPECT_EQ(m_midApi.updates(),
            "begin 0000:03:00.0 after 0 calls; end 0000:03:00.0 after 1 calls; ");
}

TEST_F(JobThreadTest, FailedCapabilityWordFailsTheJob) {
  m_midApi.writeAnswer = {true, 3, "a warning of the write"};
  m_midApi.capabilityWordAnswer = {false, 18, "no word"};

  run({FirmwareType::Iscsi});

  expectEnd(cim::JobState::Exception, 18, "no word");
}

TEST_F(JobThreadTest, ReportsTheCodeAndTextOfASuccess) {
  m_midApi.writeAnswer = {true, 3, "a warning of the write"};
  m_midApi.capabilityWordAnswer = {true, 5, "a warning of the word"};

  run({FirmwareType::Iscsi});

  expectEnd(cim::JobState::Completed, 5, "a warning of the word");
}

TEST_F(JobThreadTest, TimesOutWhenAnotherProgramHoldsTheFlashLock) {
  m_locker->beHeldByAnother();
  m_midApi.progress = 40;

  run({FirmwareType::Iscsi});

  EXPECT_THAT(m_midApi.calls(), testing::IsEmpty());
  EXPECT_THAT(m_log.records(),
              Contains(IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception",
                                  "Locking access to the Fennelbrook returns 3")));
  EXPECT_GE(placeOf("Access to the FK is disabled at this moment."), 0);
  expectEnd(cim::JobState::Exception, 4, "Timeout Error");
}

TEST_F(JobThreadTest, CallsEveryExceptionATimeout) {
  m_midApi.onWrite = [] { throw std::runtime_error("something else"); };

  run({FirmwareType::Iscsi});

  EXPECT_GE(placeOf("Access to the FK is disabled at this moment."), 0);
  expectEnd(cim::JobState::Exception, 4, "Timeout Error");
}

TEST_F(JobThreadTest, CallsWhatIsNoExceptionATimeoutToo) {
  m_midApi.onWrite = [] { throw 1; };

  run({FirmwareType::Iscsi});

  expectEnd(cim::JobState::Exception, 4, "Timeout Error");
}

TEST_F(JobThreadTest, HasItsJobsEndWhereverItIsBrokenOff) {
  m_clock.afterEachSleep([](int) { throw std::bad_alloc(); });

  run({FirmwareType::Iscsi});

  EXPECT_THAT(m_log.messages("Orvex_ConcreteJob::setJobState"), ElementsAre("2 -> 3", "3 -> 10"));
  EXPECT_THAT(m_midApi.calls(), testing::IsEmpty());
  expectEnd(cim::JobState::Exception, 4, "Timeout Error");
}

TEST_F(JobThreadTest, RunsWithoutALockerIntoATimeout) {
  m_locker.reset();

  start({FirmwareType::Iscsi});
  finish();

  EXPECT_EQ(m_job->getJobState(), cim::JobState::Exception);
  EXPECT_EQ(m_job->ErrorDescription.getValue(), "Timeout Error");
  EXPECT_THAT(m_midApi.calls(), testing::IsEmpty());
}

// The ports of the adapter that is updated boot from iSCSI no more when its new image lacks that.
class JobThreadBootTypes : public JobThreadTest {
 protected:
  JobThreadBootTypes() {
    m_midApi.adapters = {"0000:02:00.0", "0000:03:00.0", "0000:03:01.0", "0000:03:00.1",
                         "0000:13:00.0"};
    m_midApi.installed = {{FirmwareType::Pxe, {1, 0}}, {FirmwareType::Iscsi, {1, 0}}};
  }

  // Returns the calls that set boot types.
  std::vector<std::string> bootTypeCalls() const {
    std::vector<std::string> calls;
    for (const std::string& call : m_midApi.calls()) {
      if (call.starts_with("setBootType")) {
        calls.push_back(call);
      }
    }
    return calls;
  }
};

TEST_F(JobThreadBootTypes, AreClearedOnAllPortsOfTheAdapterAndNoOther) {
  run({FirmwareType::Pxe});

  EXPECT_THAT(
      m_midApi.calls(),
      ElementsAre("getAdapterFirmwareVersion 0000:03:00.0", "getPCIAddress 0000:03:00.0",
                  "enumerateAdapters", "getPCIAddress 0000:02:00.0", "getPCIAddress 0000:03:00.0",
                  "setBootType 0000:03:00.0 0", "getPCIAddress 0000:03:01.0",
                  "getPCIAddress 0000:03:00.1", "setBootType 0000:03:00.1 0",
                  "getPCIAddress 0000:13:00.0", "writeFlashImage 0000:03:00.0 'image'",
                  "updateCapabilityWord 0000:03:00.0 [3]"));
  EXPECT_GE(placeOf("MidApi returns 2 firmwares"), 0);
  expectEnd(cim::JobState::Completed, 0, "");
}

TEST_F(JobThreadBootTypes, StayOnTheAdapterOfAnotherSegment) {
  m_midApi.adapters = {"0000:03:00.0", "0001:03:00.0", "0001:03:00.1"};

  run({FirmwareType::Pxe});

  EXPECT_THAT(m_midApi.calls(), Contains("getPCIAddress 0001:03:00.0"));
  EXPECT_THAT(bootTypeCalls(), ElementsAre("setBootType 0000:03:00.0 0"));
}

TEST_F(JobThreadBootTypes, AreClearedForAJobWithoutTypes) {
  run({});

  EXPECT_THAT(bootTypeCalls(),
              ElementsAre("setBootType 0000:03:00.0 0", "setBootType 0000:03:00.1 0"));
}

TEST_F(JobThreadBootTypes, MayFailToBeCleared) {
  m_midApi.setBootTypeAnswer = false;

  run({FirmwareType::Pxe});

  EXPECT_EQ(bootTypeCalls().size(), 2u);
  expectEnd(cim::JobState::Completed, 0, "");
}

TEST_F(JobThreadBootTypes, AreInTheLogOnceWhereTheyCannotBeCleared) {
  m_midApi.setBootTypeAnswer = false;
  m_midApi.bootTypeReason = "not offered for 100%";

  run({FirmwareType::Pxe});

  EXPECT_EQ(bootTypeCalls().size(), 2u);
  EXPECT_GE(placeOf("The boot type stays: not offered for 100% 0000:03:00.0"), 0);
  EXPECT_EQ(placeOf("The boot type stays: not offered for 100% 0000:03:00.1"), -1);
  expectEnd(cim::JobState::Completed, 0, "");
}

TEST_F(JobThreadBootTypes, StayWhenTheAdapterHasNoIscsi) {
  m_midApi.installed = {{FirmwareType::Pxe, {1, 0}}};

  run({FirmwareType::Pxe});

  EXPECT_THAT(m_midApi.calls(),
              ElementsAre("getAdapterFirmwareVersion 0000:03:00.0", StartsWith("writeFlashImage"),
                          StartsWith("updateCapabilityWord")));
  EXPECT_GE(placeOf("MidApi returns 1 firmwares"), 0);
}

TEST_F(JobThreadBootTypes, StayWhenTheImageHasIscsi) {
  for (const Types& types :
       {Types{FirmwareType::Iscsi}, Types{FirmwareType::Clp, FirmwareType::Iscsi},
        Types{FirmwareType::Clp, FirmwareType::Iscsi, FirmwareType::Pxe, FirmwareType::Uefi}}) {
    run(types);
  }
  EXPECT_THAT(m_midApi.calls(), Not(Contains(StartsWith("getAdapterFirmwareVersion"))));
  EXPECT_THAT(bootTypeCalls(), testing::IsEmpty());
}

TEST_F(JobThreadBootTypes, AreClearedWhenBisectionMissesTheIscsiOfAnUnorderedList) {
  run({FirmwareType::Pxe, FirmwareType::Iscsi});

  EXPECT_EQ(bootTypeCalls().size(), 2u);
}

TEST_F(JobThreadBootTypes, StayWhenBisectionFindsTheIscsiOfAnUnorderedList) {
  run({FirmwareType::Clp, FirmwareType::Iscsi, FirmwareType::Clp});

  EXPECT_THAT(bootTypeCalls(), testing::IsEmpty());
}

TEST_F(JobThreadTest, WaitsAMomentBetweenItsFirstRecordAndItsRunningState) {
  m_clock.afterEachSleep([this](int) {
    EXPECT_GE(placeOf(" starting"), 0);
    EXPECT_EQ(placeOf("3 -> 4"), -1);
  });
  run({FirmwareType::Iscsi});
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(10), 1)));
}

TEST_F(JobThreadTest, ThatHangsHoldsItsJobsDestructionUpAfterAnErrorRecord) {
  m_midApi.holdWrites();
  start({FirmwareType::Iscsi});
  ASSERT_TRUE(m_midApi.awaitHeldWrite());
  int stepsBeforeRecord = 0;
  m_clock.afterEachSleep([&](int number) {
    if (placeOf("terminating timeout error") < 0) {
      stepsBeforeRecord = number;
    } else if (number == stepsBeforeRecord + 100) {
      m_midApi.releaseWrites();
    }
  });
  m_job.reset();

  EXPECT_EQ(stepsBeforeRecord, 60);
  EXPECT_GE(m_clock.sleeps()[milliseconds(50)], 160);
  EXPECT_THAT(m_log.records(),
              Contains(IsRecordOf(kSource, LogLevel::Error, "JobThread::~JobThread",
                                  MatchesRegex("JobThread " + test::kPointerPattern +
                                               ", terminating timeout error"))));
  EXPECT_LT(placeOf("terminating timeout error"), placeOf("autoreleasing semaphore"));
  EXPECT_EQ(placeOf(", terminated"), -1);
}

TEST_F(JobThreadTest, ThatEndsInTimeEndsItsJobsDestruction) {
  m_midApi.holdWrites();
  start({FirmwareType::Iscsi});
  ASSERT_TRUE(m_midApi.awaitHeldWrite());
  m_clock.afterEachSleep([&](int number) {
    if (number == 59) {
      m_midApi.releaseWrites();
      EXPECT_TRUE(test::waitUntil([this] { return placeOf("finishing") >= 0; }));
    }
  });
  m_job.reset();

  EXPECT_THAT(m_clock.sleeps(), Contains(Pair(milliseconds(50), 59)));
  EXPECT_GE(placeOf(", terminated"), 0);
  EXPECT_EQ(placeOf("terminating timeout error"), -1);
  EXPECT_THAT(m_midApi.calls(), Contains(StartsWith("updateCapabilityWord")));
}

}  // namespace
