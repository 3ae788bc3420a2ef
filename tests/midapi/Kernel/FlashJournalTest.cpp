#include <gmock/gmock.h>
#include <string>
#include <utility>

#include "midapi/FlashBackend.h"
#include "midapi/Kernel/FlashJournal.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::AdapterAddress;
using ma::FlashEntry;
using ma::FlashFault;
using ma::FlashJournal;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

constexpr AdapterAddress kAdapter{0, 3, 0};
constexpr AdapterAddress kOther{0, 4, 0};

FlashEntry twoComponents() {
  return {80063,
          0xAF63DC4C8601EC8C,
          {{"fw.undi", "1.0.0"}, {"fw.mgmt", "7.1.0"}},
          {{"fw.undi", "1.1.0"}, {"fw.mgmt", "7.2.0"}},
          {{"fw.undi", "0.9.0"}}};
}

class FlashJournalTest : public testing::Test {
 protected:
  template <class Operation>
  static std::string failureOf(Operation operation) {
    try {
      operation();
    } catch (const FlashFault& fault) {
      return fault.what();
    }
    return {};
  }

  test::TempDirectory m_directory;
  test::WatchedFileSystem m_files;
  test::FakeClock m_clock;
  const std::filesystem::path m_folder = m_directory.path() / "kernel";
  FlashJournal m_journal{m_files, m_folder, m_clock};
};

TEST_F(FlashJournalTest, HasAnEntryForAsLongAsTheOutcomeIsUnknown) {
  {
    const FlashJournal::Claim claim = m_journal.claim(kAdapter);
    EXPECT_FALSE(claim.leftOver());
    claim.enter(twoComponents());
    EXPECT_THAT(m_journal.entry(kAdapter), Optional(twoComponents()));
    EXPECT_FALSE(m_journal.entry(kOther));
    EXPECT_TRUE(m_journal.hasEntry(kAdapter));
    EXPECT_FALSE(m_journal.hasEntry(kOther));
    claim.clear();
    EXPECT_FALSE(m_journal.entry(kAdapter));
    claim.enter(twoComponents());
  }
  EXPECT_THAT(m_journal.claim(kAdapter).leftOver(), Optional(twoComponents()));
  EXPECT_THAT(m_journal.entry(kAdapter), Optional(twoComponents()));
}

TEST_F(FlashJournalTest, KnowsOfWhichAdaptersItHasAnEntry) {
  EXPECT_THAT(m_journal.adapters(), IsEmpty());
  m_journal.claim(kOther).enter(twoComponents());
  m_journal.claim(kAdapter).enter(twoComponents());
  static_cast<void>(m_journal.claim({0, 5, 0}));
  for (const char* name : {"kernel/other.json", "kernel/0000-6-00.json", "kernel/0000-06-00.txt"}) {
    m_directory.write(name, std::string("{}"));
  }
  EXPECT_THAT(m_journal.adapters(), ElementsAre(kAdapter, kOther));
}

TEST_F(FlashJournalTest, LetsOneWriteAnAdapterAtATime) {
  {
    const FlashJournal::Claim claim = m_journal.claim(kAdapter);
    EXPECT_FALSE(m_journal.tryClaim(kAdapter).claim);
    EXPECT_TRUE(m_journal.tryClaim(kAdapter).isTaken);
    EXPECT_THAT(
        failureOf([&] { static_cast<void>(m_journal.claim(kAdapter)); }),
        AllOf(HasSubstr("another program is writing the adapter"), HasSubstr("0000-03-00.lock")));
    EXPECT_TRUE(m_journal.tryClaim(kOther).claim);
  }
  EXPECT_TRUE(m_journal.tryClaim(kAdapter).claim);
  EXPECT_FALSE(m_journal.tryClaim(kAdapter).isTaken);
}

TEST_F(FlashJournalTest, TellsWhetherTheWriterLivesWithoutAskingIt) {
  EXPECT_FALSE(m_journal.isClaimed(kAdapter));
  {
    const FlashJournal::Claim claim = m_journal.claim(kAdapter);
    EXPECT_TRUE(m_journal.isClaimed(kAdapter));
    EXPECT_FALSE(m_journal.isClaimed(kOther));
    claim.enter(twoComponents());
  }
  EXPECT_FALSE(m_journal.isClaimed(kAdapter));
}

TEST_F(FlashJournalTest, IsEmptyWhereNothingWasEverWritten) {
  EXPECT_FALSE(m_journal.entry(kAdapter));
  EXPECT_FALSE(m_journal.tryClaim(kAdapter).claim);
  EXPECT_FALSE(m_journal.tryClaim(kAdapter).isTaken);
}

TEST_F(FlashJournalTest, KeepsTextsOfDriversAsTheyAreTold) {
  FlashEntry entry = twoComponents();
  entry.before = {{"fw.undi", "\\xff\\xff"}, {"fw \"a\"", "\xC3\xA4"}};
  entry.expected.clear();
  m_journal.claim(kAdapter).enter(entry);
  EXPECT_THAT(m_journal.entry(kAdapter), Optional(entry));
}

TEST_F(FlashJournalTest, SweepsAwayWhatAWriterThatWasKilledLeft) {
  const auto left =
      m_directory.write("kernel/0000-03-00.json.new-0123456789abcdef", std::string("{"));
  const auto others =
      m_directory.write("kernel/0000-04-00.json.new-0123456789abcdef", std::string("{"));
  static_cast<void>(m_journal.claim(kAdapter));
  EXPECT_FALSE(std::filesystem::exists(left));
  EXPECT_TRUE(std::filesystem::exists(others));
}

TEST_F(FlashJournalTest, NamesAnEntryThatIsNone) {
  for (const char* text :
       {"x", "{}", R"({"size": 1, "digest": "0", "before": {}, "expected": {}, "running": {}})",
        R"({"size": 1, "digest": "af63dc4c8601ec8c", "before": {}, "expected": {}})",
        R"({"size": 1, "digest": "af63dc4c8601ec8c", "before": [], "expected": {},
            "running": {}})",
        R"({"size": 1, "digest": "af63dc4c8601ec8c", "before": {"fw": 1}, "expected": {},
            "running": {}})"}) {
    m_directory.write("kernel/0000-03-00.json", std::string(text));
    EXPECT_THAT(failureOf([&] { static_cast<void>(m_journal.entry(kAdapter)); }),
                AllOf(HasSubstr("0000-03-00.json is no entry of a flash"),
                      HasSubstr("compare the adapter's firmware")))
        << text;
  }
}

TEST_F(FlashJournalTest, FailsBeforeTheFlashWhereNothingCanBeEntered) {
  const FlashJournal::Claim claim = m_journal.claim(kAdapter);
  m_files.beforeStep = [](const std::string& step, const std::filesystem::path& path) {
    if (step == "append") {
      test::WatchedFileSystem::failAsFullDisk("write", path);
    }
  };
  EXPECT_THAT(failureOf([&] { claim.enter(twoComponents()); }),
              HasSubstr("No space left on device"));
  EXPECT_FALSE(m_journal.entry(kAdapter));
}

// The disk does not know what stands in the folder.
TEST_F(FlashJournalTest, HasNoEntryThatTheDiskDoesNotKnow) {
  const FlashJournal::Claim claim = m_journal.claim(kAdapter);
  m_files.afterStep = [](const std::string& step, const std::filesystem::path& path) {
    if (step == "replace") {
      test::WatchedFileSystem::failAsFullDisk("synchronise", path.parent_path());
    }
  };
  EXPECT_THAT(failureOf([&] { claim.enter(twoComponents()); }),
              AllOf(HasSubstr("no record of the update can be kept, so it has not begun"),
                    HasSubstr(m_folder.string())));
  EXPECT_FALSE(m_journal.entry(kAdapter));
}

TEST_F(FlashJournalTest, SaysThatTheDiskDoesNotKnowOfAnEnd) {
  const FlashJournal::Claim claim = m_journal.claim(kAdapter);
  claim.enter(twoComponents());
  m_files.afterStep = [](const std::string& step, const std::filesystem::path& path) {
    if (step == "remove") {
      test::WatchedFileSystem::failAsFullDisk("synchronise", path.parent_path());
    }
  };
  EXPECT_THAT(failureOf([&] { claim.clear(); }), HasSubstr("No space left on device"));
  EXPECT_FALSE(m_journal.entry(kAdapter));
  claim.enter(twoComponents());
  EXPECT_NO_THROW(claim.clearQuietly());
}

}  // namespace
