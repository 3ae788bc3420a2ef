#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Clock.h"
#include "tests/agent/ConcreteJobFixture.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/NoMoreThreads.h"
#include "tests/support/PointerPattern.h"
#include "tests/support/Regex.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using ConcreteJob = test::ConcreteJobFixture;
using std::chrono::milliseconds;
using test::HasRecordOf;
using test::IsRecordOf;
using test::kAdapter;
using test::LogLevel;
using test::MatchesRegex;
using testing::Contains;
using testing::ElementsAre;
using testing::Pair;
using utils::FirmwareType;

constexpr const char* kSource = "Orvex_ConcreteJob";
constexpr const char* kControl = "Orvex_ConcreteJob::threadControl";
constexpr const char* kRequest = "Orvex_ConcreteJob::requestStateChange";

TEST_F(ConcreteJob, IsNewWhenItIsMade) {
  EXPECT_EQ(m_job->getJobState(), cim::JobState::New);
  EXPECT_FALSE(m_job->isFinished());
  EXPECT_EQ(m_job->getPercentComplete(), 0);
  EXPECT_EQ(m_job->getInstanceId(), "FirmwareUpdate@Job#7");
  EXPECT_EQ(m_job->getTarget(), kAdapter);
  EXPECT_THAT(m_job->getTargetTypes(), ElementsAre(FirmwareType::Pxe, FirmwareType::Iscsi));
  EXPECT_EQ(m_job->getClassName(), "Orvex_ConcreteJob");
  EXPECT_EQ(agent::getTargetInProgress(), kAdapter);
}

TEST_F(ConcreteJob, ChecksItsImage) {
  m_job.reset();
  const test::TempDirectory directory;
  const std::string uri = "file://" + directory.write("a.rom", std::string("rom")).string();

  m_job =
      std::make_unique<Orvex_ConcreteJob>(kAdapter, 1, uri, std::vector<std::uint16_t>{5, 32768},
                                          std::vector<std::string>{"", "IMG_UEFI"});

  EXPECT_EQ(m_job->getImage(), test::bytesOf("rom"));
  EXPECT_THAT(m_job->getTargetTypes(), ElementsAre(FirmwareType::Uefi));
}

TEST_F(ConcreteJob, DoesNotComeToExistWithABadImage) {
  m_job.reset();
  m_log.clear();
  const auto construct = [] { const Orvex_ConcreteJob job(kAdapter, 1, "nonsense", {5}, {}); };
  EXPECT_THROW(construct(), utils::Exception);
  EXPECT_EQ(agent::getTargetInProgress(), "");
  // Nor does its thread.
  EXPECT_THAT(m_log.messages("JobThread::JobThread"), testing::IsEmpty());
}

TEST_F(ConcreteJob, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(test::slotOf(&Orvex_ConcreteJob::setPropertyValues), 8u);
  EXPECT_EQ(test::slotOf(&Orvex_ConcreteJob::threadControl), 9u);
}

TEST_F(ConcreteJob, CountsTheCheckOfItsImageAsItsTime) {
  m_job.reset();
  const test::TempDirectory directory;
  const std::string uri = "file://" + directory.write("a.rom", std::string("rom")).string();
  std::uint64_t checked = 0;
  m_midApi.onPrepare = [&checked] {
    const std::uint64_t begin = utils::currentMicroseconds();
    EXPECT_TRUE(
        test::waitUntil([begin] { return utils::currentMicroseconds() >= begin + 20'000; }));
    checked = utils::currentMicroseconds();
  };
  m_job = std::make_unique<Orvex_ConcreteJob>(kAdapter, 1, uri, std::vector<std::uint16_t>{5},
                                              std::vector<std::string>{});
  m_job->setPropertyValues();

  EXPECT_LE(m_job->StartTime.getValue().value, checked - 20'000);
  EXPECT_GE(m_job->ElapsedTime.getValue().value, 20'000u);
}

// -- states --

struct StateCase {
  int state;
  bool isEnd;
};

class ConcreteJobStateTable : public ConcreteJob, public testing::WithParamInterface<StateCase> {};

TEST_P(ConcreteJobStateTable, SaysWhetherTheJobIsFinished) {
  change(GetParam().state);

  EXPECT_EQ(static_cast<int>(m_job->getJobState()), GetParam().state);
  EXPECT_EQ(m_job->isFinished(), GetParam().isEnd);
  EXPECT_EQ(m_job->getImage().empty(), GetParam().isEnd);
  EXPECT_EQ(agent::getTargetInProgress(), GetParam().isEnd ? "" : kAdapter);
  EXPECT_THAT(m_log.records(),
              HasRecordOf(kSource, LogLevel::Debug, "Orvex_ConcreteJob::setJobState",
                          "2 -> " + std::to_string(GetParam().state)));
}

TEST_P(ConcreteJobStateTable, SaysWhetherAFinishedJobStaysFinished) {
  change(7);
  change(GetParam().state);

  EXPECT_EQ(m_job->isFinished(), GetParam().isEnd);
}

INSTANTIATE_TEST_SUITE_P(States, ConcreteJobStateTable,
                         testing::Values(StateCase{2, false}, StateCase{3, false},
                                         StateCase{4, false}, StateCase{5, false},
                                         StateCase{6, true}, StateCase{7, true},
                                         StateCase{8, false}, StateCase{9, false},
                                         StateCase{10, true}, StateCase{11, false},
                                         StateCase{12, false}),
                         [](const testing::TestParamInfo<StateCase>& entry) {
                           return "State" + std::to_string(entry.param.state);
                         });

TEST_F(ConcreteJob, StaysWhatItWasInAStateOutsideTheTable) {
  for (const int state : {0, 1, 13, 65535}) {
    change(state);
    EXPECT_EQ(static_cast<int>(m_job->getJobState()), state);
    EXPECT_FALSE(m_job->isFinished()) << state;
  }
  change(10);
  for (const int state : {0, 1, 13, 65535}) {
    change(state);
    EXPECT_TRUE(m_job->isFinished()) << state;
  }
}

TEST_F(ConcreteJob, KeepsNoMemoryOfItsImageAtItsEnd) {
  for (const int state : {6, 7, 10}) {
    m_job = makeJob();
    EXPECT_GE(m_job->getImage().capacity(), 5u);
    change(state);
    EXPECT_EQ(m_job->getImage().capacity(), 0u) << state;
  }
}

// Who sees the end may ask for the next update, which must not be refused for this one.
TEST_F(ConcreteJob, IsNeverSeenAtItsEndWithItsTargetInProgress) {
  for (int round = 0; round < 200; ++round) {
    m_job = makeJob();
    auto observer = std::async(std::launch::async, [this] {
      return test::waitUntil([this] { return m_job->isFinished(); }) &&
             m_job->getJobState() == cim::JobState::Completed && agent::getTargetInProgress() == "";
    });
    change(7);
    ASSERT_TRUE(observer.get()) << round;
  }
}

TEST_F(ConcreteJob, ClearsTheTargetInProgressWheneverItReachesAnEnd) {
  change(7);
  agent::setTargetInProgress("0000:04:00.0");
  change(10);
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJob, NotesTheTimeOfEveryChange) {
  m_job->setPropertyValues();
  EXPECT_FALSE(m_job->TimeOfLastStateChange.getValue().isTimestamp);
  EXPECT_EQ(m_job->TimeOfLastStateChange.getValue().value, 0u);
  const std::uint64_t before = utils::currentMicroseconds();

  change(5);

  m_job->setPropertyValues();
  EXPECT_TRUE(m_job->TimeOfLastStateChange.getValue().isTimestamp);
  EXPECT_GE(m_job->TimeOfLastStateChange.getValue().value, before);
}

TEST_F(ConcreteJob, MeasuresItsTimeWhenItIsCompletedOnly) {
  m_job->setPropertyValues();
  const std::uint64_t made = m_job->StartTime.getValue().value;
  ASSERT_TRUE(test::waitUntil([made] { return utils::currentMicroseconds() >= made + 20'000; }));
  const auto elapsed = [this] {
    m_job->setPropertyValues();
    return m_job->ElapsedTime.getValue().value;
  };
  const std::uint64_t atConstruction = elapsed();
  change(10);
  EXPECT_EQ(elapsed(), atConstruction);
  change(7);
  EXPECT_GE(elapsed(), 20'000u);
  EXPECT_FALSE(m_job->ElapsedTime.getValue().isTimestamp);
}

TEST_F(ConcreteJob, DoesNotCutAnErrorCodeIntoAnother) {
  m_job->setError(65535, "the largest");
  m_job->setPropertyValues();
  EXPECT_EQ(m_job->ErrorCode.getValue(), 65535);
  EXPECT_EQ(m_job->ErrorDescription.getValue(), "the largest");

  m_job->setError(70009, "too large");
  m_job->setPropertyValues();
  EXPECT_EQ(m_job->ErrorCode.getValue(), 65535);
  EXPECT_EQ(m_job->ErrorDescription.getValue(), "too large (error 70009)");
}

// -- requests --

TEST_F(ConcreteJob, StartsWhenItIsAskedTo) {
  startAndHold();

  EXPECT_EQ(m_job->getJobState(), cim::JobState::Running);
  EXPECT_THAT(m_log.messages(kRequest), ElementsAre("New request 2", "starting job"));
  finish();
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Completed);
}

TEST_F(ConcreteJob, RefusesOtherRequests) {
  for (const std::uint16_t state : std::vector<std::uint16_t>{0, 1, 3, 4, 5, 11, 32768, 65535}) {
    m_log.clear();
    EXPECT_EQ(request(state), 5u);
    EXPECT_THAT(m_log.records(),
                ElementsAre(IsRecordOf(kSource, LogLevel::Debug, kRequest,
                                       "New request " + std::to_string(state)),
                            IsRecordOf(kSource, LogLevel::Error, kRequest,
                                       "Not supported new state " + std::to_string(state))));
    EXPECT_EQ(m_job->getJobState(), cim::JobState::New);
  }
}

TEST_F(ConcreteJob, StartsOnce) {
  startAndHold();
  EXPECT_EQ(request(2), 4097u);
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Running);
  finish();
  EXPECT_EQ(request(2), 4097u);
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Completed);
  EXPECT_THAT(m_log.records(), HasRecordOf(kSource, LogLevel::Error, kRequest,
                                           "Cannot start job that is not in 'NEW' state"));
}

TEST_F(ConcreteJob, DoesNotStartFromStarting) {
  change(3);
  EXPECT_EQ(request(2), 4097u);
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Starting);
}

// Whatever it shows stays, and so does its thread.
TEST_F(ConcreteJob, ChangesNothingWhenItIsStartedAgain) {
  const auto expectNoChange = [this] {
    m_job->setPropertyValues();
    const std::vector<test::NamedValue> before = test::filledProperties(*m_job);
    const std::vector<std::uint8_t> image = m_job->getImage();
    const std::string inProgress = agent::getTargetInProgress();
    m_log.clear();
    EXPECT_EQ(request(2), 4097u);
    EXPECT_THAT(m_log.records(),
                ElementsAre(IsRecordOf(kSource, LogLevel::Debug, kRequest, "New request 2"),
                            IsRecordOf(kSource, LogLevel::Error, kRequest,
                                       "Cannot start job that is not in 'NEW' state")));
    m_job->setPropertyValues();
    EXPECT_EQ(test::filledProperties(*m_job), before);
    EXPECT_EQ(m_job->getImage(), image);
    EXPECT_EQ(agent::getTargetInProgress(), inProgress);
  };
  change(3);
  expectNoChange();
  m_job = makeJob();
  m_midApi.progress = 42;
  startAndHold();
  expectNoChange();
  EXPECT_FALSE(deleteThread());
  finish();
  expectNoChange();
  EXPECT_FALSE(deleteThread());
  change(10);
  expectNoChange();
}

TEST_F(ConcreteJob, FailsWhenItsThreadDoesNotStart) {
  makeJobByTheClock();
  m_log.clear();
  m_job->setError(9, "as it was");
  {
    const test::NoMoreThreads noMoreThreads;
    EXPECT_EQ(request(2), 4u);
  }
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Exception);
  EXPECT_EQ(agent::getTargetInProgress(), "");
  m_job->setPropertyValues();
  EXPECT_EQ(m_job->ErrorCode.getValue(), 9);
  EXPECT_EQ(m_job->ErrorDescription.getValue(), "as it was");
  EXPECT_THAT(m_log.records(),
              HasRecordOf(kSource, LogLevel::Error, kControl, "Thread start error"));
  EXPECT_THAT(m_log.messages("Orvex_ConcreteJob::setJobState"), ElementsAre("2 -> 3", "3 -> 10"));
}

// What counts as started is waited for, whether there is a thread or not.
TEST_F(ConcreteJob, IsDestroyedAfterTheWholeWaitForAThreadThatDidNotStart) {
  makeJobByTheClock();
  {
    const test::NoMoreThreads noMoreThreads;
    EXPECT_EQ(request(2), 4u);
  }
  EXPECT_THAT(m_clock.sleeps(), testing::IsEmpty());
  m_job.reset();
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 60)));
}

// -- the thread --

TEST_F(ConcreteJob, WaitsForItsThread) {
  startAndHold();
  EXPECT_FALSE(m_job->threadControl(2, 30));
  EXPECT_THAT(m_log.messages(kControl), ElementsAre("New threadControl 1", "New threadControl 2"));
  m_midApi.releaseWrites();
  EXPECT_TRUE(m_job->threadControl(2, 30'000));
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Completed);
}

TEST_F(ConcreteJob, CountsATimeoutThatIsUsedUpExactlyAsWaited) {
  makeJobByTheClock();
  startAndHold();
  EXPECT_TRUE(m_job->threadControl(2, 50));
  EXPECT_THAT(m_clock.sleeps(), Contains(Pair(milliseconds(50), 1)));
  EXPECT_EQ(m_job->getJobState(), cim::JobState::Running);
}

TEST_F(ConcreteJob, ControlsItsThreadForOneAtATime) {
  makeJobByTheClock();
  startAndHold();
  std::future<bool> deleted;
  m_clock.afterEachSleep([&](int) {
    deleted = std::async(std::launch::async, [this] { return deleteThread(); });
    EXPECT_EQ(deleted.wait_for(milliseconds(100)), std::future_status::timeout);
  });
  EXPECT_TRUE(m_job->threadControl(2, 50));
  m_clock.afterEachSleep([](int) {});
  EXPECT_FALSE(deleted.get());
}

TEST_F(ConcreteJob, DeletesItsThreadWhenThatIsDone) {
  startAndHold();
  EXPECT_FALSE(deleteThread());
  EXPECT_THAT(m_log.messages(kControl), Contains("threadControl 3 - DONE"));
  finish();
  EXPECT_THAT(
      m_log.messages(kControl),
      Contains(MatchesRegex("Deleting JobThread " + test::kPointerPattern + " for 0000:03:00.0")));
  m_log.clear();

  EXPECT_FALSE(deleteThread());
  EXPECT_THAT(
      m_log.records(),
      ElementsAre(IsRecordOf(kSource, LogLevel::Debug, kControl, "New threadControl 3"),
                  IsRecordOf(kSource, LogLevel::Debug, kControl, "threadControl 3 - DONE")));
}

TEST_F(ConcreteJob, LogsTheDeletionOfItsThread) {
  ASSERT_EQ(request(2), 0u);
  ASSERT_TRUE(m_job->threadControl(2, 30'000));
  m_log.clear();

  EXPECT_TRUE(deleteThread());

  EXPECT_THAT(
      m_log.messages(kControl),
      ElementsAre("New threadControl 3",
                  MatchesRegex("Deleting JobThread " + test::kPointerPattern + " for 0000:03:00.0"),
                  "threadControl 3 - DONE"));
}

TEST_F(ConcreteJob, KnowsNoOtherThreadCommands) {
  for (const std::int32_t command : {0, 4, -1}) {
    m_log.clear();
    EXPECT_FALSE(m_job->threadControl(command, 0));
    const std::string number = std::to_string(command);
    EXPECT_THAT(m_log.messages(kControl),
                ElementsAre("New threadControl " + number, "threadControl " + number + " - DONE"));
  }
}

TEST_F(ConcreteJob, WantsAThreadToStartOrToWaitFor) {
  startAndHold();
  finish();
  for (const std::int32_t command : {1, 2}) {
    const auto call = [this, command] { m_job->threadControl(command, 0); };
    EXPECT_THAT(call, test::ThrowsExactly<utils::Exception>(
                          test::IsAssertion(kSource, "m_myThread != NULL")));
  }
}

// -- progress --

TEST_F(ConcreteJob, HasTheLibrarysProgressWhileItRuns) {
  m_midApi.progress = 42;
  EXPECT_EQ(m_job->getPercentComplete(), 0);
  change(3);
  EXPECT_EQ(m_job->getPercentComplete(), 0);
  change(4);
  EXPECT_EQ(m_job->getPercentComplete(), 42);
  change(5);
  m_midApi.progress = 80;
  EXPECT_EQ(m_job->getPercentComplete(), 42);
}

TEST_F(ConcreteJob, HasAllOfItsProgressAtTheEnd) {
  m_midApi.progress = 42;
  for (const int state : {7, 10}) {
    change(state);
    EXPECT_EQ(m_job->getPercentComplete(), 100) << state;
  }
  change(9);
  EXPECT_EQ(m_job->getPercentComplete(), 100);
}

TEST_F(ConcreteJob, NeverPublishesAnEndWithLessThanAllOfItsProgress) {
  change(4);
  m_midApi.progress = 99;
  // The job ends while its progress is looked up.
  m_midApi.onProgress = [this] { change(7); };

  m_job->setPropertyValues();

  EXPECT_EQ(m_job->JobState.getValue(), 4);
  EXPECT_EQ(m_job->PercentComplete.getValue(), 99);
  m_job->setPropertyValues();
  EXPECT_EQ(m_job->JobState.getValue(), 7);
  EXPECT_EQ(m_job->PercentComplete.getValue(), 100);
}

}  // namespace
