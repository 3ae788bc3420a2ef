// What is told of flashes whose writers were killed, and what is left of them.

#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/midapi/Kernel/KernelBackendFixture.h"

namespace {

using ma::AdapterList;
using ma::NetlinkAck;
using test::kKernelAdapter;
using test::kKernelFunction;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr ma::AdapterAddress kGone{0, 0x63, 0};

class InterruptedFlashes : public test::KernelBackendFixture {
 protected:
  // A write in whose middle the process is killed; then the flash holds those versions.
  void dieWriting(const std::string& undi, const std::string& mgmt) {
    m_drivers.onDevlinkFlash = [&](const std::string&, const std::string&,
                                   const auto&) -> NetlinkAck {
      store(undi, mgmt);
      m_files.isDead = true;
      throw std::runtime_error("killed");
    };
    EXPECT_THROW(write(), std::runtime_error);
    m_files.isDead = false;
    passASecond();
  }
  // The same for one that has not asked the kernel for anything.
  void dieStaging() {
    m_files.beforeStep = [this](const std::string& name, const std::filesystem::path& path) {
      if (name == "create" && path.parent_path() == m_places.journal) {
        m_files.isDead = true;
        throw std::runtime_error("killed");
      }
    };
    EXPECT_THROW(write(), std::runtime_error);
    m_files.isDead = false;
    m_files.beforeStep = [](const std::string&, const std::filesystem::path&) {};
    EXPECT_EQ(staged().size(), 1U);
    EXPECT_FALSE(hasEntry());
  }
};

TEST_F(InterruptedFlashes, TellsOfAnInterruptedUpdateThatTheKernelHasFinished) {
  dieWriting("1.1.0", "7.2.0");
  EXPECT_TRUE(hasEntry());
  EXPECT_EQ(staged().size(), 1U);
  const AdapterList list = m_backend.list();
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_THAT(list.adapters[0].notes,
              ElementsAre("an update was interrupted; the kernel has finished it since: the flash "
                          "holds what the file has (fw.undi 1.1.0, fw.mgmt 7.2.0)"));
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_FALSE(hasEntry());
  EXPECT_THAT(listing().notes, IsEmpty());
}

TEST_F(InterruptedFlashes, TellsOfAnInterruptedUpdateUntilTheNextOne) {
  dieWriting("", "7.1.0");
  for (int looks = 0; looks < 2; ++looks) {
    const AdapterList list = m_backend.list();
    ASSERT_EQ(list.problems.size(), 1U);
    EXPECT_EQ(list.problems[0].place, "0000:03:00");
    EXPECT_EQ(list.problems[0].text,
              "an update was interrupted; the flash holds neither what it held before nor what the "
              "file has (fw.undi (none), fw.mgmt 7.1.0)");
    EXPECT_EQ(list.problems[0].advice, "update it again before the machine starts anew");
    EXPECT_THAT(list.adapters[0].notes,
                ElementsAre(HasSubstr("no stored version of fw.undi"), list.problems[0].text));
    EXPECT_THAT(staged(), IsEmpty());
  }
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_EQ(staged().size(), 1U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(InterruptedFlashes, TellsOfAnInterruptedUpdateThatHasChangedNothing) {
  dieWriting("1.0.0", "7.1.0");
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_EQ(
      list.problems[0].text,
      "an update was interrupted; the flash holds what it held before (fw.undi 1.0.0, fw.mgmt "
      "7.1.0)");
  EXPECT_EQ(list.problems[0].advice, "update it again");
  EXPECT_THAT(m_backend.interruptedWrites(),
              ElementsAre("0000:03:00: " + list.problems[0].text + "; update it again"));
}

TEST_F(InterruptedFlashes, DoesNotTakeWhatRunsForWhatAnErasedFlashHolds) {
  dieWriting("", "");
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_EQ(list.problems[0].text,
            "an update was interrupted; the flash holds neither what it held before nor what the "
            "file has (fw.undi (none), fw.mgmt (none))");
}

TEST_F(InterruptedFlashes, SaysNothingOfAnInterruptedUpdateWhileItGoesOn) {
  dieWriting("1.0.0", "7.1.0");
  m_drivers.answers[kKernelFunction].isAway = true;
  const AdapterList list = m_backend.list();
  EXPECT_TRUE(list.adapters[0].isBeingWritten);
  EXPECT_THAT(list.adapters[0].notes, IsEmpty());
  EXPECT_THAT(list.problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(InterruptedFlashes, NamesAnEntryThatIsNone) {
  m_directory.write("kernel/0000-03-00.json", std::string("{"));
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_THAT(list.problems[0].text, HasSubstr("0000-03-00.json is no entry of a flash"));
  m_drivers.isPrivileged = false;
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(InterruptedFlashes, SweepsAwayWhatAProcessLeftThatWasKilledBeforeItsEntry) {
  m_directory.write("firmware/quorvel-0000-03-00.fw.new-0123456789abcdef", std::string("x"));
  m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
    EXPECT_EQ(staged().size(), 1U);
    store("1.1.0", "7.2.0");
    return NetlinkAck{};
  };
  write();
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(InterruptedFlashes, IsSweptAwayByAListWhereItDidNotComeToTheKernel) {
  dieStaging();
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(InterruptedFlashes, IsSweptAwayByWhoLooksForInterruptedOnes) {
  dieStaging();
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(InterruptedFlashes, IsNotSweptAwayWhileItsWriterLives) {
  dieStaging();
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  const ma::FlashJournal::Claim writer = journal.claim(kKernelAdapter);
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_EQ(staged().size(), 1U);
}

TEST_F(InterruptedFlashes, IsNotTakenForInterruptedWhereItBeginsDuringAList) {
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  std::optional<ma::FlashJournal::Claim> writer;
  m_drivers.beforeAnswer = [&](const std::vector<std::string>&) {
    writer.emplace(journal.claim(kKernelAdapter));
    writer->enter({1, 2, {}, {{"fw.undi", "1.1.0"}}, {}});
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(InterruptedFlashes, IsNotTakenForInterruptedWhereItEndsDuringAList) {
  dieWriting("", "7.1.0");
  m_files.beforeStep = [this](const std::string& name, const std::filesystem::path&) {
    if (name == "lock") {
      std::filesystem::remove(m_places.journal / "0000-03-00.json");
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
}

TEST_F(InterruptedFlashes, IsNotTakenForInterruptedWhereItsWriterIsNotSeen) {
  dieWriting("", "7.1.0");
  const ma::FlashJournal journal(ma::nativeFileSystem(), m_places.journal, m_clock);
  std::optional<ma::FlashJournal::Claim> writer;
  m_files.beforeStep = [&](const std::string& name, const std::filesystem::path&) {
    if (name == "lock" && !writer) {
      writer.emplace(journal.claim(kKernelAdapter));
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_EQ(staged().size(), 1U);
}

TEST_F(InterruptedFlashes, KeepsAnEntryThatWasMadeAfterTheLookAtIt) {
  dieWriting("1.1.0", "7.2.0");
  m_files.beforeStep = [this](const std::string& name, const std::filesystem::path&) {
    if (name == "lock") {
      m_directory.write("kernel/0000-03-00.json",
                        std::string(R"({"size": 1, "digest": "af63dc4c8601ec8c", "before": {},
                                        "expected": {}, "running": {}})"));
    }
  };
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_TRUE(hasEntry());
}

TEST_F(InterruptedFlashes, IsToldOfAnAdapterThatIsNotThere) {
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  journal.claim(kGone).enter({1, 2, {}, {{"fw.undi", "1.1.0"}}, {}});
  m_directory.write("firmware/quorvel-0000-63-00.fw.new-0123456789abcdef", std::string("x"));
  const std::string place = (m_places.journal / "0000-63-00.json").string();
  const AdapterList list = m_backend.list();
  ASSERT_EQ(list.problems.size(), 1U);
  EXPECT_EQ(list.problems[0].place, "0000:63:00");
  EXPECT_EQ(list.problems[0].text, "an update was interrupted, and the adapter is not there");
  EXPECT_EQ(list.problems[0].advice,
            "update it again when it is back, or remove " + place + " if it never will be");
  EXPECT_THAT(m_backend.interruptedWrites(),
              ElementsAre("0000:63:00: " + list.problems[0].text + "; " + list.problems[0].advice));
  EXPECT_THAT(staged(), IsEmpty());
  EXPECT_TRUE(hasEntry("0000-63-00.json"));
}

TEST_F(InterruptedFlashes, IsNoneWhileTheWriterOfAnAdapterThatIsNotThereLives) {
  const ma::FlashJournal journal(m_files, m_places.journal, m_clock);
  const ma::FlashJournal::Claim writer = journal.claim(kGone);
  writer.enter({1, 2, {}, {}, {}});
  m_directory.write("firmware/quorvel-0000-63-00.fw.new-0123456789abcdef", std::string("x"));
  EXPECT_THAT(m_backend.list().problems, IsEmpty());
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_EQ(staged().size(), 1U);
}

TEST_F(InterruptedFlashes, LeavesNothingOfAnAdapterThatIsNotThereAndWasNotWritten) {
  m_directory.write("firmware/quorvel-0000-63-00.fw.new-0123456789abcdef", std::string("x"));
  m_directory.write("kernel/other.json", std::string("{}"));
  EXPECT_THAT(m_backend.interruptedWrites(), IsEmpty());
  EXPECT_THAT(staged(), IsEmpty());
}

}  // namespace
