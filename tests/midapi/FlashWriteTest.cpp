#include "tests/midapi/FlashWriteTest.h"

#include <chrono>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <thread>

namespace ma {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test::WatchedFileSystem;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Le;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

TEST_F(FlashWriteTest, ReplacesTheFlashInBlocks) {
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, ElementsAre(65536, 65536, 65536, 200000 - 3 * 65536));
}

TEST_F(FlashWriteTest, TakesTheTimeThatItsRateDemands) {
  setRate(1000000);
  const auto begin = steady_clock::now();
  write();
  EXPECT_GE(steady_clock::now() - begin, milliseconds(200));
  expectSuccess();
  EXPECT_THAT(m_files.blocks, Each(Le(50000U)));
}

TEST_F(FlashWriteTest, TakesSmallStepsAtSlowRates) {
  m_new = Bytes(100, 'n');
  setRate(400);
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, AllOf(SizeIs(5), Each(20U)));
}

TEST_F(FlashWriteTest, WritesByteByByteAtTheSlowestRates) {
  m_new = Bytes(2, 'n');
  setRate(19);
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, ElementsAre(1, 1));
}

TEST_F(FlashWriteTest, StandsAtNinetyNineUntilTheFlashIsReplaced) {
  m_files.beforeReplace = [&] {
    EXPECT_EQ(m_progress.percent(), 99U);
    EXPECT_EQ(m_adapters.flash(kPci), m_old);
  };
  write();
  expectSuccess();
}

TEST_F(FlashWriteTest, ReportsProgressThatOnlyRises) {
  std::vector<std::uint32_t> seen;
  setRate(4000000);
  m_files.beforeAppend = [&](std::size_t) { seen.push_back(m_progress.percent()); };
  write();
  EXPECT_THAT(seen, ElementsAre(0U, 32U, 65U, 98U));
}

TEST_F(FlashWriteTest, FailsAtItsPercentageWithTheInjectedCodeAndText) {
  setFaults(R"({"write": {"atPercent": 40, "code": 17, "text": "cell 7 is %s"}})");
  write();
  expectFailure(17, "cell 7 is %s");
  EXPECT_EQ(m_progress.percent(), 40U);
}

TEST_F(FlashWriteTest, FailsAtEitherEndToo) {
  setFaults(R"({"write": {"atPercent": 0, "code": 17, "text": "at once"}})");
  write();
  expectFailure(17, "at once");
  EXPECT_EQ(m_progress.percent(), 0U);
  setFaults(R"({"write": {"atPercent": 100, "code": 18, "text": "at the end"}})");
  write();
  expectFailure(18, "at the end");
  EXPECT_EQ(m_progress.percent(), 99U);
}

TEST_F(FlashWriteTest, HangsUntilTheFaultIsTakenOutOfTheDescription) {
  setFaults(R"({"hang": {"atPercent": 30}})");
  const auto writing = writeOnAThread();
  waitForProgress(30);
  EXPECT_EQ(writing.wait_for(milliseconds(150)), std::future_status::timeout);
  EXPECT_EQ(m_progress.percent(), 30U);
  EXPECT_EQ(m_adapters.flash(kPci), m_old);
  setFaults("{}");
  ASSERT_EQ(writing.wait_for(kPatience), std::future_status::ready);
  expectSuccess();
}

TEST_F(FlashWriteTest, KeepsHangingWhileTheDescriptionIsUnreadable) {
  const std::string before = m_adapters.description(kPci);
  setFaults(R"({"hang": {"atPercent": 30}})");
  const auto writing = writeOnAThread();
  waitForProgress(30);
  m_adapters.describe(kPci, "half an edit");
  EXPECT_EQ(writing.wait_for(milliseconds(150)), std::future_status::timeout);
  m_adapters.describe(kPci, before);
  ASSERT_EQ(writing.wait_for(kPatience), std::future_status::ready);
  expectSuccess();
}

TEST_F(FlashWriteTest, FailsBehindAHang) {
  setFaults(R"({"hang": {"atPercent": 30},
                 "write": {"atPercent": 60, "code": 17, "text": "later"}})");
  const auto writing = writeOnAThread();
  waitForProgress(30);
  setFaults("{}");
  ASSERT_EQ(writing.wait_for(kPatience), std::future_status::ready);
  expectFailure(17, "later");
  EXPECT_EQ(m_progress.percent(), 60U);
}

TEST_F(FlashWriteTest, ReportsAFullDisk) {
  m_files.beforeAppend = [&](std::size_t appended) {
    if (appended > 100000) {
      WatchedFileSystem::failAsFullDisk("write", m_adapters.folder(kPci) / "flash.rom.new");
    }
  };
  write();
  expectFailure(205,
                (m_adapters.folder(kPci) / "flash.rom.new").string() + ": No space left on device");
}

TEST_F(FlashWriteTest, ReportsAReplacementThatFails) {
  m_files.beforeReplace = [&] { WatchedFileSystem::failAsFullDisk("replace", "flash.rom"); };
  write();
  expectFailure(205, "cannot replace flash.rom");
}

TEST_F(FlashWriteTest, ComparesWhatItReadsBack) {
  m_files.afterRead = [](const std::filesystem::path& path, FileBytes& content) {
    if (path.filename() == "flash.rom.new") {
      content.writable()[0x12345] ^= 1;
    }
  };
  write();
  expectFailure(206, "flash.rom.new differs from the image at 0x12345");
}

TEST_F(FlashWriteTest, ComparesTheSizeOfWhatItReadsBack) {
  m_files.afterRead = [](const std::filesystem::path& path, FileBytes& content) {
    if (path.filename() == "flash.rom.new") {
      content.shorten(content.view().size() - 1);
    }
  };
  write();
  expectFailure(206, "differs from the image");
}

TEST_F(FlashWriteTest, OverwritesWhatAKilledProcessLeft) {
  std::ofstream(m_adapters.folder(kPci) / "flash.rom.new") << std::string(300000, 'x');
  write();
  expectSuccess();
}

}  // namespace
}  // namespace ma
