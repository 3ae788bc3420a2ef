#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "agent/Orvex_ConcreteJob.h"
#include "agent/Orvex_ConcreteJobClass.h"
#include "cim/InstallOptions.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/agent/FileCuttingSinks.h"
#include "tests/agent/NoMoreThreads.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::HasRecordOf;
using test::IsRecordOf;
using test::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kAdapter = "0000:03:00.0";
constexpr const char* kOtherAdapter = "0000:04:00.0";
constexpr const char* kSource = "Orvex_ConcreteJobClass";
constexpr const char* kVerifyOrCreate = "Orvex_ConcreteJobClass::verifyOrCreateNewJob";

class ConcreteJobClass : public testing::Test {
 public:
  ConcreteJobClass() { m_provider = std::make_unique<Orvex_ConcreteJobClass>(); }
  ~ConcreteJobClass() override {
    m_midApi.releaseWrites();
    m_provider.reset();
    agent::clearTargetInProgress();
  }

 protected:
  std::int32_t create(const std::string& target = kAdapter) { return call(target, true); }
  std::int32_t verify(const std::string& target = kAdapter) { return call(target, false); }

  std::vector<Orvex_ConcreteJob*> enumerate() {
    std::vector<Orvex_ConcreteJob*> jobs;
    core::InstanceList::Iterator cursor = m_provider->getInstances();
    for (core::CimInstance* job = cursor.first(); job != nullptr; job = cursor.next()) {
      jobs.push_back(dynamic_cast<Orvex_ConcreteJob*>(job));
    }
    return jobs;
  }

  std::vector<std::string> captions() {
    std::vector<std::string> captions;
    for (Orvex_ConcreteJob* job : enumerate()) {
      captions.push_back(job->Caption.getValue());
    }
    return captions;
  }

  // Waits until the library is writing.
  void holdTheJobOf(const std::string& target) {
    m_midApi.holdWrites();
    ASSERT_EQ(create(target), 0);
    ASSERT_TRUE(m_midApi.awaitHeldWrite());
  }

  void createAndFinish() {
    ASSERT_EQ(create(), 0);
    ASSERT_TRUE(test::waitUntil([this] {
      return dynamic_cast<Orvex_ConcreteJob*>(m_job)->isFinished() &&
             agent::getTargetInProgress() == "";
    }));
  }

  // Enumerates until the finished job has lost its thread, which ends after the job does.
  bool loseTheThread() {
    return test::waitUntil([this] {
      enumerate();
      return !m_log.messages("JobThread::~JobThread").empty();
    });
  }

  test::PlacedLog m_log;
  test::FakeConfig m_config;
  test::FakeLocker m_locker;
  test::FakeMidApi m_midApi;
  test::TempDirectory m_directory;
  std::unique_ptr<Orvex_ConcreteJobClass> m_provider;
  std::string m_uri = "file://" + m_directory.write("image.rom", std::string("rom")).string();
  std::vector<std::uint16_t> m_options{cim::kUpdate};
  core::CimInstance* m_job = nullptr;

 private:
  std::int32_t call(const std::string& target, bool isCreate) {
    return m_provider->verifyOrCreateNewJob(target, m_uri, m_options, {}, m_job, isCreate);
  }
};

TEST_F(ConcreteJobClass, IsTheJobFactoryForItsLifetime) {
  EXPECT_EQ(m_provider->getName(), "Orvex_ConcreteJob");
  EXPECT_EQ(ConcreteJobFactory::getInstance(), m_provider.get());
  EXPECT_THAT(m_log.records(), HasRecordOf("Utils/Singleton", LogLevel::Debug,
                                           "utils::Singleton<class ConcreteJobFactory>::Singleton",
                                           "New singleton instance for ConcreteJobFactory"));
  m_provider.reset();
  EXPECT_FALSE(ConcreteJobFactory::hasInstance());
}

TEST_F(ConcreteJobClass, CreatesAndStartsAJob) {
  holdTheJobOf(kAdapter);

  auto* job = dynamic_cast<Orvex_ConcreteJob*>(m_job);
  ASSERT_NE(job, nullptr);
  EXPECT_THAT(enumerate(), ElementsAre(job));
  EXPECT_EQ(job->InstanceID.getValue(), "Orvex:FirmwareUpdate@Job#1");
  EXPECT_EQ(job->Caption.getValue(), "Firmware Update Job 1");
  EXPECT_EQ(job->getJobState(), cim::JobState::Running);
  EXPECT_EQ(job->getTarget(), kAdapter);
  EXPECT_THAT(m_log.records(),
              HasRecordOf(kSource, LogLevel::Debug, "Orvex_ConcreteJobClass::createNewJob",
                          "Creating new job for 0000:03:00.0 with id #1"));
}

TEST_F(ConcreteJobClass, PublishesAJobBeforeItIsEnumerated) {
  holdTheJobOf(kAdapter);
  EXPECT_EQ(m_job->getPath(), "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#1\"");
}

TEST_F(ConcreteJobClass, KeepsFinishedJobs) {
  createAndFinish();
  createAndFinish();
  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 1", "Firmware Update Job 2"));
}

TEST_F(ConcreteJobClass, UsesANumberUpForAJobThatCameToExistOnly) {
  m_midApi.prepareStatus = ma::PrepareStatus::InvalidImage;
  EXPECT_EQ(create(), 1);
  m_midApi.prepareStatus = ma::PrepareStatus::Ok;
  createAndFinish();
  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 1"));
}

TEST_F(ConcreteJobClass, TakesAJobThatCannotStartBack) {
  test::FakeClock clock;
  m_provider.reset();
  m_provider = std::make_unique<Orvex_ConcreteJobClass>(clock);
  {
    const test::NoMoreThreads noMoreThreads;
    EXPECT_EQ(create(), 106);
    // The wait of its end is nobody's who asks.
    EXPECT_THAT(clock.sleeps(), IsEmpty());
  }
  EXPECT_EQ(m_job, nullptr);
  EXPECT_THAT(enumerate(), IsEmpty());
  EXPECT_EQ(agent::getTargetInProgress(), "");

  createAndFinish();
  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 2"));
  m_provider.reset();
  EXPECT_GE(clock.sleeps()[std::chrono::milliseconds(50)], 60);
}

TEST_F(ConcreteJobClass, GivesEachOfTwoRequestsThatAreLetInTogetherItsNumber) {
  m_midApi.holdWrites();
  std::int32_t inner = -1;
  bool isInside = false;
  m_midApi.onPrepare = [&] {
    if (!std::exchange(isInside, true)) {
      // The other one asked for the target in progress before this one set it.
      agent::clearTargetInProgress();
      inner = create(kOtherAdapter);
    }
  };
  EXPECT_EQ(create(kAdapter), 0);
  EXPECT_EQ(inner, 0);
  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 2", "Firmware Update Job 1"));
}

TEST_F(ConcreteJobClass, GivesNoNumberTwiceWhenTheFirstOfTwoIsRefused) {
  m_midApi.holdWrites();
  bool isInside = false;
  m_midApi.onPrepare = [&] {
    if (!std::exchange(isInside, true)) {
      agent::clearTargetInProgress();
      EXPECT_EQ(create(kOtherAdapter), 0);
      m_midApi.prepareStatus = ma::PrepareStatus::InvalidImage;
    }
  };
  EXPECT_EQ(create(kAdapter), 1);
  m_midApi.prepareStatus = ma::PrepareStatus::Ok;
  agent::clearTargetInProgress();
  EXPECT_EQ(create(kAdapter), 0);
  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 2", "Firmware Update Job 3"));
}

TEST_F(ConcreteJobClass, RefusesASecondUpdateWhileOneRuns) {
  holdTheJobOf(kAdapter);

  EXPECT_EQ(create(kAdapter), 105);
  EXPECT_EQ(m_job, nullptr);
  EXPECT_EQ(create(kOtherAdapter), 104);
  EXPECT_EQ(verify(kAdapter), 105);
  EXPECT_EQ(verify(kOtherAdapter), 104);
  EXPECT_EQ(enumerate().size(), 1u);
}

TEST_F(ConcreteJobClass, VerifiesWithoutAJobAndLeavesTheTargetInProgress) {
  EXPECT_EQ(verify(), 0);

  EXPECT_EQ(m_job, nullptr);
  EXPECT_THAT(enumerate(), IsEmpty());
  EXPECT_EQ(agent::getTargetInProgress(), kAdapter);
  EXPECT_EQ(create(kAdapter), 105);
  EXPECT_EQ(create(kOtherAdapter), 104);
  EXPECT_EQ(verify(kAdapter), 105);
}

TEST_F(ConcreteJobClass, LeavesNoTargetInProgressWhenVerificationFails) {
  m_midApi.prepareStatus = ma::PrepareStatus::InvalidImage;
  EXPECT_EQ(verify(), 1);
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJobClass, LogsARefusalByItsFullText) {
  m_uri = "nonsense";
  EXPECT_EQ(create(), 100);
  EXPECT_THAT(m_log.records(),
              HasRecordOf(kSource, LogLevel::Error, kVerifyOrCreate,
                          "Exception: 'Quorvel: EInvalidUri:URI: nonsense is invalid'"));
}

TEST_F(ConcreteJobClass, AnswersEachRefusalByItsNumber) {
  const auto refuse = [this](ma::PrepareStatus status) {
    m_midApi.prepareStatus = status;
    return create();
  };
  EXPECT_EQ(refuse(ma::PrepareStatus::InvalidImage), 1);
  EXPECT_EQ(refuse(ma::PrepareStatus::NotForAdapter), 2);
  EXPECT_EQ(refuse(ma::PrepareStatus::Downgrade), 3);
  EXPECT_EQ(refuse(ma::PrepareStatus::TypesDiffer), 3);
  EXPECT_EQ(refuse(ma::PrepareStatus::InternalFault), 4);
  EXPECT_EQ(refuse(ma::PrepareStatus::NotUpdatable), 5);
  m_uri = "file://" + (m_directory.path() / "missing").string();
  EXPECT_EQ(create(), 101);
  m_uri = "http://host/image.rom";
  EXPECT_EQ(create(), 100);
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJobClass, AnswersAFileThatCannotBeReadWholeByItsNumber) {
  const std::filesystem::path file = m_directory.write("long.rom", std::string("firmware"));
  m_uri = "file://" + file.string();
  const test::FileCuttingSinks sinks(file);

  EXPECT_EQ(create(), 103);
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJobClass, AnswersAnUnknownTypeAsAnInvalidParameter) {
  EXPECT_EQ(m_provider->verifyOrCreateNewJob(kAdapter, m_uri, {cim::kUpdate, cim::kTargetTypes},
                                             {"", "img_pxe"}, m_job, true),
            1);
}

TEST_F(ConcreteJobClass, AnswersAnyOtherErrorAsUnspecified) {
  class FailingConfig : public test::FakeConfig {
    bool getDowngradeEnable() override { throw std::runtime_error("no configuration"); }
  } config;
  m_midApi.prepareStatus = ma::PrepareStatus::TypesDiffer;

  EXPECT_EQ(create(), 4);

  EXPECT_THAT(m_log.records(), HasRecordOf(kSource, LogLevel::Error, kVerifyOrCreate,
                                           "Exception: 'no configuration'"));
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJobClass, AnswersWhatIsNoExceptionAsUnspecifiedToo) {
  m_midApi.onPrepare = [] { throw 1; };

  EXPECT_EQ(create(), 4);
  EXPECT_EQ(verify(), 4);

  EXPECT_THAT(m_log.records(),
              HasRecordOf(kSource, LogLevel::Error, kVerifyOrCreate, "Exception: 'unknown'"));
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(ConcreteJobClass, RefreshesItsJobsWhenItIsEnumerated) {
  createAndFinish();
  const std::string function = "ConcreteJob::getInstances";
  ASSERT_TRUE(loseTheThread());
  m_log.clear();

  const std::vector<Orvex_ConcreteJob*> jobs = enumerate();

  ASSERT_EQ(jobs.size(), 1u);
  EXPECT_EQ(jobs[0]->JobState.getValue(), 7);
  EXPECT_EQ(jobs[0]->PercentComplete.getValue(), 100);
  EXPECT_THAT(m_log.records(),
              ElementsAre(IsRecordOf(kSource, LogLevel::Debug, function, "All jobs: 1"),
                          IsRecordOf(kSource, LogLevel::Debug, function,
                                     "Refreshing job: FirmwareUpdate@Job#1"),
                          IsRecordOf("Orvex_ConcreteJob", LogLevel::Debug,
                                     "Orvex_ConcreteJob::threadControl", "New threadControl 3"),
                          IsRecordOf("Orvex_ConcreteJob", LogLevel::Debug,
                                     "Orvex_ConcreteJob::threadControl", "threadControl 3 - DONE"),
                          IsRecordOf(kSource, LogLevel::Debug, function, "return 1")));
}

TEST_F(ConcreteJobClass, DeletesTheThreadsOfFinishedJobsWhenItIsEnumerated) {
  createAndFinish();
  EXPECT_TRUE(loseTheThread());
}

TEST_F(ConcreteJobClass, PublishesTheProgressOfARunningJob) {
  holdTheJobOf(kAdapter);
  m_midApi.progress = 37;
  const std::vector<Orvex_ConcreteJob*> jobs = enumerate();

  ASSERT_EQ(jobs.size(), 1u);
  EXPECT_EQ(jobs[0]->JobState.getValue(), 4);
  EXPECT_EQ(jobs[0]->PercentComplete.getValue(), 37);
}

// A provider whose jobs a test brings.
class OpenJobClass : public Orvex_ConcreteJobClass {
 public:
  using InstanceProvider::instances;
};

class JobWithoutControl : public Orvex_ConcreteJob {
 public:
  JobWithoutControl(std::uint32_t number, std::function<void()> fault)
      : Orvex_ConcreteJob(kAdapter, number, agent::VerifiedImage{}), m_fault(std::move(fault)) {}

  bool threadControl(std::int32_t command, std::int32_t timeout) override {
    m_fault();
    return Orvex_ConcreteJob::threadControl(command, timeout);
  }

 private:
  const std::function<void()> m_fault;
};

TEST_F(ConcreteJobClass, PublishesJobsWhoseThreadsCannotBeLookedAfter) {
  m_provider.reset();
  auto open = std::make_unique<OpenJobClass>();
  const std::vector<std::function<void()>> faults = {[] { throw std::runtime_error("stuck"); },
                                                     [] { throw 1; }, [] {}};
  for (std::uint32_t number = 1; number <= faults.size(); ++number) {
    open->instances().add(new JobWithoutControl(number, faults[number - 1]));
  }
  m_provider = std::move(open);
  m_log.clear();

  EXPECT_THAT(captions(), ElementsAre("Firmware Update Job 1", "Firmware Update Job 2",
                                      "Firmware Update Job 3"));
  EXPECT_THAT(
      m_log.messages("ConcreteJob::getInstances"),
      ElementsAre("All jobs: 3", "Refreshing job: FirmwareUpdate@Job#1", "Exception happened",
                  "Refreshing job: FirmwareUpdate@Job#2", "Exception happened",
                  "Refreshing job: FirmwareUpdate@Job#3", "return 3"));
}

// -- refusals, each by its type's text, and with the target free before it is told of --

// Notes the error records, and which target is in progress at each.
class RefusalWatch final : public utils::LogSinks {
 public:
  using Note = std::pair<std::string, std::string>;

  RefusalWatch() : m_previous(utils::exchangeLogSinks(this)) {}
  ~RefusalWatch() override { utils::exchangeLogSinks(m_previous); }

  void writeEventLog(const std::string& line) noexcept override {
    notes.emplace_back(test::parseLogLine(line).message, agent::getTargetInProgress());
  }
  void writeDebugChannel(const std::string& line) noexcept override {
    m_previous->writeDebugChannel(line);
  }
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  std::vector<Note> notes;

 private:
  utils::LogSinks* m_previous;
};

class ConcreteJobClassRefusal : public ConcreteJobClass {
 protected:
  // Expects that both kinds of request are refused so, with this target in progress meanwhile.
  void expectRefusal(std::int32_t result, const std::string& text,
                     const std::string& inProgress = "") {
    for (const bool isCreate : {true, false}) {
      const RefusalWatch watch;
      EXPECT_EQ(
          m_provider->verifyOrCreateNewJob(kAdapter, m_uri, m_options, m_values, m_job, isCreate),
          result);
      ASSERT_GE(watch.notes.size(), 2u);
      // The error itself, and what the job class says of it.
      const std::vector<RefusalWatch::Note> last(watch.notes.end() - 2, watch.notes.end());
      EXPECT_THAT(
          last, ElementsAre(RefusalWatch::Note(text, inProgress),
                            RefusalWatch::Note("Exception: 'Quorvel: " + text + "'", inProgress)));
      EXPECT_EQ(m_job, nullptr);
    }
  }

  void expectRefusalOf(ma::PrepareStatus status, std::int32_t result, const std::string& text) {
    m_midApi.prepareStatus = status;
    expectRefusal(result, text);
  }

  std::vector<std::string> m_values;
};

TEST_F(ConcreteJobClassRefusal, OfATargetInProgress) {
  agent::setTargetInProgress(kAdapter);
  expectRefusal(105, "ETargetInUse:Firmware update for 0000:03:00.0 is currently in progress",
                kAdapter);
  agent::setTargetInProgress(kOtherAdapter);
  expectRefusal(104, "EJobIsRunning:Other job for 0000:04:00.0 is running at this moment",
                kOtherAdapter);
}

TEST_F(ConcreteJobClassRefusal, OfAUri) {
  m_uri = "http://host/image.rom";
  expectRefusal(100, "EInvalidUri:URI: http://host/image.rom is invalid");
  m_uri = "file:///nowhere/at/all.rom";
  expectRefusal(101, "EUriDoesNotExist:URI: file:///nowhere/at/all.rom is invalid");
}

TEST_F(ConcreteJobClassRefusal, OfAFile) {
  m_config.maxImageSize = 2;
  const std::string path = m_uri.substr(std::string("file://").size());
  expectRefusal(103, "EImageReadError:Image read error: " + m_uri + " (" + path +
                         "): its 3 bytes are more than MaxImageSize allows (2 in " +
                         utils::QuorvelConfig::placeOf("") + ")");
}

TEST_F(ConcreteJobClassRefusal, OfATypeThatIsUnknown) {
  m_options = {cim::kUpdate, cim::kTargetTypes};
  m_values = {"", "IMG_PXE+img_pxe"};
  expectRefusal(1,
                "EInvalidParameter:Invalid parameter detected for TargetTypes. img_pxe is not "
                "recognized");
}

TEST_F(ConcreteJobClassRefusal, OfTheFlashLibrary) {
  expectRefusalOf(ma::PrepareStatus::InvalidImage, 1,
                  "EInvalidParameter:Invalid parameter detected for " + m_uri);
  expectRefusalOf(
      ma::PrepareStatus::NotForAdapter, 2,
      "EAdapterNotSupported:Image " + m_uri + " is not supported for adapter 0000:03:00.0");
  expectRefusalOf(ma::PrepareStatus::InternalFault, 4,
                  "EUnspecifiedError:Unspecified error occurred for " + m_uri);
  expectRefusalOf(ma::PrepareStatus::NotUpdatable, 5,
                  "ENotApplicableForTarget:Not applicable for " + m_uri);
}

TEST_F(ConcreteJobClassRefusal, OfADowngrade) {
  const std::string downgrade = "EDowngradeDetected:Downgrade was detected for " + m_uri +
                                ". Try to use FORCE_INSTALL option.";
  expectRefusalOf(ma::PrepareStatus::Downgrade, 3, downgrade);
  expectRefusalOf(ma::PrepareStatus::TypesDiffer, 3,
                  "EDowngradeDetected:The selected flash image cannot be used because it does not "
                  "contain the same image types. Please select a flash file with matching image "
                  "types.");
  m_config.isDowngradeEnabled = true;
  expectRefusalOf(ma::PrepareStatus::TypesDiffer, 3, downgrade);
}

TEST_F(ConcreteJobClassRefusal, LeavesTheTargetToTheNextRequest) {
  expectRefusalOf(ma::PrepareStatus::InvalidImage, 1,
                  "EInvalidParameter:Invalid parameter detected for " + m_uri);
  m_midApi.prepareStatus = ma::PrepareStatus::Ok;
  EXPECT_EQ(create(kOtherAdapter), 0);
}

TEST_F(ConcreteJobClass, WithoutJobsIsEmpty) {
  EXPECT_THAT(enumerate(), IsEmpty());
  EXPECT_THAT(m_log.messages("ConcreteJob::getInstances"), ElementsAre("All jobs: 0", "return 0"));
}

}  // namespace
