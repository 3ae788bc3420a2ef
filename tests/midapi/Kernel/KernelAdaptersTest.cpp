#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <latch>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "midapi/Kernel/KernelAdapters.h"
#include "tests/midapi/Kernel/PlayedDrivers.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::AdapterAddress;
using ma::DriverAnswer;
using ma::FlashEntry;
using ma::KernelAdapter;
using ma::KernelAdapters;
using ma::SharedBytes;
using std::chrono::milliseconds;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr AdapterAddress kAdapter{0, 3, 0};
constexpr AdapterAddress kOther{0, 4, 0};
const std::string kPort = "0000:03:00.0";
const std::string kOtherPort = "0000:04:00.0";

const FlashEntry kEntry{1, 2, {{"fw", "1.0"}}, {{"fw", "2.0"}}, {{"fw", "0.9"}}};

DriverAnswer stored(const std::string& version) {
  DriverAnswer answer;
  answer.devlink = ma::DevlinkInfo{"testnic", "", "", {}, {}, {{"fw", version}}};
  return answer;
}

// Of a driver that could not be asked.
DriverAnswer unasked(int error) {
  DriverAnswer answer;
  answer.error = error;
  answer.isPartial = true;
  answer.vpd.error = answer.rom.error = EBUSY;
  return answer;
}

DriverAnswer away() {
  DriverAnswer answer;
  answer.isAway = true;
  return answer;
}

class KernelAdaptersTest : public testing::Test {
 protected:
  KernelAdaptersTest() {
    m_sysfs.addFunction(kPort);
    m_drivers.answers[kPort] = stored("1.0");
  }

  void addOther() {
    m_sysfs.addFunction(kOtherPort);
    m_drivers.answers[kOtherPort] = stored("7.0");
  }
  // Returns the stored version that an adapter's functions are said to have: "1.0 1.0", "?" for
  // none; and what the writer has noted.
  static std::string told(const KernelAdapter& adapter) {
    std::string text;
    for (const ma::KernelFunction& function : adapter.functions) {
      const auto& devlink = function.answer.devlink;
      text += (text.empty() ? "" : " ") +
              (devlink && !devlink->stored.empty() ? devlink->stored.front().value : "?");
    }
    return text + (adapter.isBeingWritten ? ", being written" : "") +
           (adapter.noted ? ", noted " + adapter.noted->before.front().value : "");
  }
  std::vector<std::string> tellAll() {
    std::vector<std::string> texts;
    for (const KernelAdapter& adapter : m_adapters.all()) {
      texts.push_back(toString(adapter.address) + " " + told(adapter));
    }
    return texts;
  }
  std::string tell(const AdapterAddress& address = kAdapter) {
    const auto adapter = m_adapters.find(address);
    return adapter ? told(*adapter) : "none";
  }
  void pass(milliseconds time) { m_clock.sleepFor(time); }
  // The folder that replaces the function's is another one, as sysfs makes it.
  void plugInAgain() {
    std::filesystem::rename(m_sysfs.folder(kPort), m_sysfs.folder("old"));
    std::filesystem::remove(m_sysfs.root() / "bus/pci/devices" / kPort);
    m_sysfs.addFunction(kPort);
  }
  void addVpdAndRom(const std::string& port) {
    m_sysfs.setAttribute(port, "vpd", "");
    m_sysfs.setAttribute(port, "rom", "");
    m_drivers.answers[port].vpd = {0, std::vector<std::uint8_t>{0x82}};
    m_drivers.answers[port].rom = {0, std::vector<std::uint8_t>{0x55, 0xAA}};
  }

  test::SysfsFixture m_sysfs;
  test::TempDirectory m_directory;
  test::PlayedDrivers m_drivers;
  test::FakeClock m_clock;
  const ma::FlashJournal m_journal{ma::nativeFileSystem(), m_directory.path() / "kernel", m_clock};
  KernelAdapters m_adapters{m_sysfs.root(), m_drivers, m_journal, m_clock};
};

TEST_F(KernelAdaptersTest, AsksTheDriversOfAllAtOnce) {
  addOther();
  m_sysfs.addFunction("0000:03:00.1");
  m_drivers.answers["0000:03:00.1"] = stored("1.1");
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0 1.1", "0000:04:00 7.0"));
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0, 0000:03:00.1, 0000:04:00.0"));
}

TEST_F(KernelAdaptersTest, KeepsWhatWasToldWhereDevlinkDoesNotAnswerNow) {
  addVpdAndRom(kPort);
  DriverAnswer mute = m_drivers.answers[kPort];
  mute.devlink.emplace();
  mute.error = EBUSY;
  m_drivers.answers[kPort] = mute;
  const auto first = m_adapters.find(kAdapter);
  EXPECT_TRUE(first->functions[0].answer.devlink);
  EXPECT_EQ(first->functions[0].answer.error, EBUSY);
  EXPECT_FALSE(first->functions[0].answer.vpd.bytes.empty());
  m_drivers.answers[kPort] = stored("1.0");
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
  m_drivers.answers[kPort] = mute;
  pass(KernelAdapters::kFresh);
  EXPECT_EQ(tell(), "1.0");
}

TEST_F(KernelAdaptersTest, AsksForOneAdapterWhereOneIsMeant) {
  addOther();
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0"));
  EXPECT_EQ(tell({0, 5, 0}), "none");
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelAdaptersTest, TellsTheFunctionsWithoutAskingAnybody) {
  addOther();
  EXPECT_EQ(m_adapters.functions().size(), 2U);
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelAdaptersTest, AsksAgainAfterASecond) {
  EXPECT_EQ(tell(), "1.0");
  m_drivers.answers[kPort] = stored("2.0");
  pass(milliseconds(999));
  EXPECT_EQ(tell(), "1.0");
  pass(milliseconds(1));
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersTest, AsksAgainWhenSomethingHasChanged) {
  addOther();
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0", "0000:04:00 7.0"));
  m_drivers.takeAsked();
  m_adapters.forget(kAdapter);
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0", "0000:04:00 7.0"));
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 latest"));
}

TEST_F(KernelAdaptersTest, AsksAnotherDriverAtOnce) {
  EXPECT_EQ(tell(), "1.0");
  m_drivers.answers[kPort] = stored("2.0");
  m_sysfs.bindDriver(kPort, "othernic");
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersTest, ReadsVpdAndRomOnce) {
  addVpdAndRom(kPort);
  for (int look = 0; look < 2; ++look) {
    const auto adapter = m_adapters.find(kAdapter);
    ASSERT_TRUE(adapter);
    EXPECT_THAT(adapter->functions[0].answer.vpd.bytes, ElementsAre(0x82));
    EXPECT_THAT(adapter->functions[0].answer.rom.bytes, ElementsAre(0x55, 0xAA));
    pass(milliseconds(1000));
  }
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
}

TEST_F(KernelAdaptersTest, ReadsAFileAgainLaterThatCouldNotBeRead) {
  addVpdAndRom(kPort);
  m_drivers.answers[kPort].rom = {EINVAL, {}};
  m_drivers.answers[kPort].vpd = {EIO, {}};
  EXPECT_EQ(m_adapters.find(kAdapter)->functions[0].answer.rom.error, EINVAL);
  pass(std::chrono::seconds(4));
  EXPECT_EQ(m_adapters.find(kAdapter)->functions[0].answer.vpd.error, EIO);
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
  addVpdAndRom(kPort);
  pass(std::chrono::seconds(1));
  EXPECT_THAT(m_adapters.find(kAdapter)->functions[0].answer.rom.bytes, ElementsAre(0x55, 0xAA));
  pass(std::chrono::hours(1));
  tell();
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
}

TEST_F(KernelAdaptersTest, TriesEverMoreSeldomToReadWhatNeverCan) {
  addVpdAndRom(kPort);
  m_drivers.answers[kPort].rom = {EINVAL, {}};
  const auto triesIn = [this](std::chrono::seconds time) {
    for (std::chrono::seconds passed{0}; passed < time; passed += std::chrono::seconds(1)) {
      pass(std::chrono::seconds(1));
      tell();
    }
    const auto asked = m_drivers.takeAsked();
    return std::count_if(asked.begin(), asked.end(), [](const std::string& question) {
      return question.find("rom") != std::string::npos;
    });
  };
  EXPECT_EQ(triesIn(std::chrono::seconds(60)), 4);  // after 0, 5, 15 and 35 seconds
  triesIn(std::chrono::hours(1));
  EXPECT_EQ(triesIn(std::chrono::hours(1)), 6);
}

TEST_F(KernelAdaptersTest, DoesNotTryAgainWithoutTheRight) {
  addVpdAndRom(kPort);
  m_drivers.answers[kPort].rom = {EACCES, {}};
  tell();
  pass(std::chrono::hours(1));
  tell();
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
}

TEST_F(KernelAdaptersTest, TriesAtOnceWhenSomethingHasChanged) {
  addVpdAndRom(kPort);
  m_drivers.answers[kPort].rom = {EIO, {}};
  tell();
  m_adapters.forget(kAdapter);
  tell();
  EXPECT_THAT(m_drivers.takeAsked(),
              ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0 vpd rom latest"));
}

TEST_F(KernelAdaptersTest, ReadsThemAgainWhenTheFunctionIsPluggedInAgain) {
  addVpdAndRom(kPort);
  EXPECT_EQ(tell(), "1.0");
  plugInAgain();
  addVpdAndRom(kPort);
  EXPECT_EQ(tell(), "1.0");
  m_sysfs.setAttribute(kPort, "subsystem_device", "0x1234");
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(),
              ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0 vpd rom", "0000:03:00.0 vpd rom"));
}

TEST_F(KernelAdaptersTest, ReadsThemAgainWhenSomethingHasChanged) {
  addVpdAndRom(kPort);
  EXPECT_EQ(tell(), "1.0");
  m_adapters.forget(kAdapter);
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(),
              ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0 vpd rom latest"));
}

TEST_F(KernelAdaptersTest, ForgetsWhatIsUnplugged) {
  addOther();
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0", "0000:04:00 7.0"));
  std::filesystem::remove(m_sysfs.root() / "bus/pci/devices" / kPort);
  EXPECT_THAT(tellAll(), ElementsAre("0000:04:00 7.0"));
  EXPECT_EQ(tell(), "none");
}

TEST_F(KernelAdaptersTest, TellsWhatWasLastKnownOfAnAdapterThatIsBeingWritten) {
  addOther();
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0", "0000:04:00 7.0"));
  const auto claim = m_journal.claim(kAdapter);
  claim.enter(kEntry);
  m_drivers.takeAsked();
  pass(milliseconds(1000));
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0, being written", "0000:04:00 7.0"));
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre(kOtherPort));
  claim.clear();
  EXPECT_EQ(tell(), "1.0");
}

TEST_F(KernelAdaptersTest, TellsWhatTheWriterNotedWhereNobodyHasAsked) {
  const auto claim = m_journal.claim(kAdapter);
  claim.enter(kEntry);
  const auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_TRUE(adapter->isBeingWritten);
  EXPECT_FALSE(adapter->functions[0].answer.devlink);  // whether it has that, nobody knows
  EXPECT_EQ(adapter->noted, kEntry);
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelAdaptersTest, AsksTheDriverWhereTheWriterIsGone) {
  m_journal.claim(kAdapter).enter(kEntry);
  m_drivers.answers[kPort] = stored("2.0");
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersTest, MindsNoJournalThatCannotBeRead) {
  m_directory.write("kernel/0000-03-00.json", std::string("{"));
  const auto claim = m_journal.claim(kAdapter);
  EXPECT_EQ(tell(), "1.0");
}

TEST_F(KernelAdaptersTest, AsksTheDriverForTheWriterAlways) {
  EXPECT_EQ(tell(), "1.0");
  const auto claim = m_journal.claim(kAdapter);
  claim.enter(kEntry);
  m_drivers.answers[kPort] = stored("2.0");
  const auto adapter = m_adapters.findForWriter(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(told(*adapter), "2.0");
  EXPECT_EQ(tell(), "2.0, being written");
}

TEST_F(KernelAdaptersTest, WantsTheLatestAnswerForTheWriterAndUntilThereIsOne) {
  EXPECT_EQ(tell(), "1.0");
  m_drivers.takeAsked();
  m_drivers.answers[kPort] = away();
  EXPECT_TRUE(m_adapters.findForWriter(kAdapter));
  m_drivers.answers[kPort] = stored("2.0");
  EXPECT_EQ(tell(), "2.0");
  pass(milliseconds(1000));
  EXPECT_EQ(tell(), "2.0");
  EXPECT_THAT(m_drivers.takeAsked(),
              ElementsAre("0000:03:00.0 latest", "0000:03:00.0 latest", kPort));
}

TEST_F(KernelAdaptersTest, TellsWhatWasLastKnownOfADriverThatDoesNotAnswer) {
  EXPECT_EQ(tell(), "1.0");
  pass(milliseconds(1000));
  m_drivers.answers[kPort] = away();
  EXPECT_EQ(tell(), "1.0, being written");
  m_drivers.answers[kPort] = stored("2.0");
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersTest, TakesNoAdapterForBeingWrittenWhereItsFilesAreLate) {
  addVpdAndRom(kPort);
  ma::DriverAnswer& answer = m_drivers.answers[kPort];
  answer.isPartial = true;
  answer.rom = {EBUSY, {}};
  auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(told(*adapter), "1.0");
  EXPECT_THAT(adapter->functions[0].answer.vpd.bytes, ElementsAre(0x82));
  EXPECT_EQ(adapter->functions[0].answer.rom.error, EBUSY);
  pass(milliseconds(1000));
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0 rom"));
}

TEST_F(KernelAdaptersTest, KeepsWhatADriverHasSaidWhereItIsLate) {
  m_drivers.answers[kPort].devlink.reset();
  m_drivers.answers[kPort].info = ma::DriverInfo{"igb", "6.1", "1.2"};
  EXPECT_EQ(tell(), "?");
  m_drivers.answers[kPort].info.reset();
  m_drivers.answers[kPort].isPartial = true;
  pass(milliseconds(1000));
  const auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter && adapter->functions[0].answer.info);
  EXPECT_EQ(adapter->functions[0].answer.info->firmwareVersion, "1.2");
}

TEST_F(KernelAdaptersTest, WaitsForADriverThatDoesNotAnswer) {
  m_adapters.awaitAnswer(kAdapter);
  EXPECT_EQ(m_clock.slept(), milliseconds(0));
  pass(milliseconds(1000));
  m_drivers.answers[kPort] = away();
  m_clock.afterEachSleep([this](int sleeps) {
    if (sleeps == 4) {
      m_drivers.answers[kPort] = stored("2.0");
    }
  });
  m_adapters.awaitAnswer(kAdapter);
  EXPECT_EQ(m_clock.slept(), milliseconds(1000 + 1000));
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersTest, DoesNotWaitForLong) {
  m_drivers.answers[kPort] = away();
  m_adapters.awaitAnswer(kAdapter);
  EXPECT_EQ(m_clock.slept(), KernelAdapters::kLongestWait);
  m_adapters.awaitAnswer({0, 9, 0});
  EXPECT_EQ(m_clock.slept(), KernelAdapters::kLongestWait);
}

TEST_F(KernelAdaptersTest, DoesNotWaitForTheWriter) {
  const auto claim = m_journal.claim(kAdapter);
  claim.enter(kEntry);
  m_drivers.answers[kPort] = away();
  m_adapters.awaitAnswer(kAdapter);
  EXPECT_EQ(m_clock.slept(), milliseconds(0));
}

TEST_F(KernelAdaptersTest, ReadsVpdAndRomOfADriverThatAnswersAgain) {
  m_drivers.answers[kPort] = away();
  addVpdAndRom(kPort);
  EXPECT_EQ(tell(), "?, being written");
  EXPECT_EQ(tell(), "?, being written");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0 vpd rom"));
}

TEST_F(KernelAdaptersTest, TellsAFileThatWasNotReadFromOneThatIsEmpty) {
  addVpdAndRom(kPort);
  m_drivers.answers[kPort] = away();
  auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(adapter->functions[0].answer.vpd.error, EBUSY);
  EXPECT_EQ(adapter->functions[0].answer.rom.error, EBUSY);
  m_drivers.answers[kPort] = stored("1.0");
  adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(adapter->functions[0].answer.vpd.error, 0);
  EXPECT_EQ(adapter->functions[0].answer.rom.error, 0);
}

TEST_F(KernelAdaptersTest, TellsTheJournalOfADriverThatNeverAnswered) {
  m_journal.claim(kAdapter).enter(kEntry);
  m_drivers.answers[kPort] = away();
  EXPECT_EQ(tell(), "?, being written, noted 1.0");
}

TEST_F(KernelAdaptersTest, KeepsWhatIsKnownWhereNothingCanBeAsked) {
  addVpdAndRom(kPort);
  EXPECT_EQ(tell(), "1.0");
  m_adapters.forget(kAdapter);
  m_drivers.answers[kPort] = unasked(EAGAIN);
  const auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(told(*adapter), "1.0");
  EXPECT_EQ(adapter->functions[0].answer.error, EAGAIN);
  EXPECT_THAT(adapter->functions[0].answer.rom.bytes, ElementsAre(0x55, 0xAA));
  m_drivers.takeAsked();
  EXPECT_EQ(tell(), "1.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom latest"));
}

TEST_F(KernelAdaptersTest, ReadsTheFilesOfADriverThatCannotBeAsked) {
  m_drivers.answers[kPort] = {};
  addVpdAndRom(kPort);
  m_drivers.answers[kPort].error = EMFILE;
  const auto adapter = m_adapters.find(kAdapter);
  ASSERT_TRUE(adapter);
  EXPECT_EQ(adapter->functions[0].answer.error, EMFILE);
  EXPECT_FALSE(adapter->functions[0].hasAnswered);
  EXPECT_THAT(adapter->functions[0].answer.rom.bytes, ElementsAre(0x55, 0xAA));
  EXPECT_EQ(tell(), "?");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0 vpd rom", "0000:03:00.0"));
}

// One thread asks a driver, and meanwhile another one looks.
class KernelAdaptersOfTwo : public KernelAdaptersTest {
 protected:
  // Has `act` happen while a look that has begun waits for its answer.
  template <class Act>
  void during(Act act) {
    std::latch hasAsked(1);
    std::latch mayAnswer(1);
    bool isFirst = true;
    m_drivers.beforeAnswer = [&](const std::vector<std::string>&) {
      if (std::exchange(isFirst, false)) {
        hasAsked.count_down();
        mayAnswer.wait();
      }
    };
    std::thread look([this] { tell(); });
    hasAsked.wait();
    act();
    mayAnswer.count_down();
    look.join();
    m_drivers.beforeAnswer = [](const std::vector<std::string>&) {};
  }
};

TEST_F(KernelAdaptersOfTwo, DoNotWaitForEachOther) {
  addOther();
  during([this] { EXPECT_EQ(tell(kOther), "7.0"); });
  m_drivers.takeAsked();
  EXPECT_THAT(tellAll(), ElementsAre("0000:03:00 1.0", "0000:04:00 7.0"));
  EXPECT_THAT(m_drivers.takeAsked(), IsEmpty());
}

TEST_F(KernelAdaptersOfTwo, BelieveTheOneThatAskedLater) {
  during([this] {
    m_adapters.forget(kAdapter);  // or it would be told what the first one is
    m_drivers.answers[kPort] = stored("2.0");
    EXPECT_EQ(tell(), "2.0");
    m_drivers.answers[kPort] = stored("1.0");  // as the first one was told
  });
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersOfTwo, DoNotTakeAnAnswerForFreshThatIsFromBeforeAChange) {
  during([this] { m_adapters.forget(kAdapter); });
  m_drivers.answers[kPort] = stored("2.0");
  EXPECT_EQ(tell(), "2.0");
}

TEST_F(KernelAdaptersOfTwo, DoNotTakeAnAnswerForThatOfAFunctionPluggedInMeanwhile) {
  during([this] {
    plugInAgain();
    m_drivers.answers[kPort] = stored("2.0");
    EXPECT_EQ(tell(), "2.0");
    m_drivers.answers[kPort] = stored("1.0");
  });
  EXPECT_EQ(tell(), "2.0");
}

// Many threads that meet a stale answer.
class KernelAdaptersOfMany : public KernelAdaptersTest {
 protected:
  // Returns what they are told while the first one has to wait for its answer until all have come.
  std::vector<std::string> tellMany() {
    std::atomic<int> begun{0};
    m_drivers.beforeAnswer = [&begun](const std::vector<std::string>&) {
      EXPECT_TRUE(test::waitUntil([&begun] { return begun == kThreads; }));
    };
    std::vector<std::string> told(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        ++begun;
        told[static_cast<std::size_t>(i)] = tell();
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    return told;
  }

  static constexpr int kThreads = 100;
};

TEST_F(KernelAdaptersOfMany, AskOnce) {
  EXPECT_THAT(tellMany(), Each("1.0"));
  EXPECT_THAT(m_drivers.takeAsked(), SizeIs(1));
  m_drivers.answers[kPort] = stored("2.0");
  pass(KernelAdapters::kFresh);
  EXPECT_THAT(tellMany(), Each("2.0"));
  EXPECT_THAT(m_drivers.takeAsked(), SizeIs(1));
}

TEST_F(KernelAdaptersOfMany, GoOnWhereTheOneThatAsksGetsNoAnswer) {
  tell();
  pass(KernelAdapters::kFresh);
  m_drivers.takeAsked();
  std::atomic<bool> isFirst{true};
  std::latch hasAsked(1);
  m_drivers.beforeAnswer = [&](const std::vector<std::string>&) {
    if (isFirst.exchange(false)) {
      hasAsked.count_down();
      throw std::bad_alloc();
    }
  };
  std::thread unlucky([this] { EXPECT_THROW(tell(), std::bad_alloc); });
  hasAsked.wait();
  EXPECT_EQ(tell(), "1.0");
  unlucky.join();
  EXPECT_THAT(m_drivers.takeAsked(), SizeIs(2));
}

TEST_F(KernelAdaptersTest, AsksForAllThatAreStaleByOneLook) {
  addOther();
  tellAll();
  pass(KernelAdapters::kFresh);
  m_drivers.takeAsked();
  EXPECT_EQ(tell(), "1.0");
  EXPECT_EQ(tell(kOther), "7.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0, 0000:04:00.0"));
  pass(KernelAdapters::kFresh);
  EXPECT_EQ(tell(kOther), "7.0");
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:04:00.0, 0000:03:00.0"));
}

TEST_F(KernelAdaptersTest, AsksNobodyAlongWhomNobodyWantsToKnow) {
  addOther();
  tellAll();
  pass(KernelAdapters::kCompany);
  m_drivers.takeAsked();
  tell();
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0"));
}

TEST_F(KernelAdaptersTest, AsksNobodyAlongWhoWouldHoldItUp) {
  addOther();
  m_drivers.answers[kOtherPort] = away();
  tellAll();
  pass(KernelAdapters::kFresh);
  m_drivers.takeAsked();
  tell();
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0"));
  m_drivers.answers[kOtherPort] = stored("7.0");
  tell(kOther);
  pass(KernelAdapters::kFresh);
  const auto claim = m_journal.claim(kOther);
  claim.enter(kEntry);
  m_drivers.takeAsked();
  tell();
  EXPECT_THAT(m_drivers.takeAsked(), ElementsAre("0000:03:00.0"));
}

}  // namespace
