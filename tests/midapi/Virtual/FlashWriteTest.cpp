#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>

#include "tests/midapi/Virtual/FlashWriteFixture.h"

namespace {

using ma::FileBytes;
using std::chrono::milliseconds;
using std::chrono::seconds;
using test::WatchedFileSystem;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::Pair;

using Bytes = std::vector<std::uint8_t>;
using FlashWriteTest = test::FlashWriteFixture;

TEST_F(FlashWriteTest, ReplacesTheFlashInBlocks) {
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, ElementsAre(65536, 65536, 65536, 200000 - 3 * 65536));
}

TEST_F(FlashWriteTest, NeverWaitsWithoutARate) {
  setRate(0);
  write();
  expectSuccess();
  EXPECT_THAT(m_clock.sleeps(), IsEmpty());
}

TEST_F(FlashWriteTest, TakesTheTimeThatItsRateDemands) {
  setRate(1000000);
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, Each(Le(50000U)));
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 4)));
}

TEST_F(FlashWriteTest, WaitsForWhatTheDiskHasLeftOfItsTurn) {
  setRate(1000000);
  // Each block takes the disk 20 ms.
  m_files.beforeAppend = [&](std::size_t) { m_clock.sleepFor(milliseconds(20)); };
  write();
  expectSuccess();
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(20), 4), Pair(milliseconds(30), 4)));
}

TEST_F(FlashWriteTest, TakesSmallStepsAtSlowRates) {
  m_new = Bytes(100, 'n');
  setRate(400);
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, ElementsAre(20, 20, 20, 20, 20));
  EXPECT_EQ(m_clock.slept(), milliseconds(250));
}

TEST_F(FlashWriteTest, WritesByteByByteAtTheSlowestRates) {
  m_new = Bytes(2, 'n');
  setRate(1);
  write();
  expectSuccess();
  EXPECT_THAT(m_files.blocks, ElementsAre(1, 1));
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(seconds(1), 2)));
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

TEST_F(FlashWriteTest, FailsAtTheFirstByteThatIsItsPercentage) {
  m_new = Bytes(101, 'n');
  setFaults(R"({"write": {"atPercent": 1, "code": 17, "text": "early"}})");
  write();
  expectFailure(17, "early");
  EXPECT_EQ(m_progress.percent(), 1U);
  EXPECT_THAT(m_files.blocks, ElementsAre(2));
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
  m_clock.afterEachSleep([&](int count) {
    EXPECT_EQ(m_progress.percent(), 30U);
    EXPECT_EQ(m_adapters.flash(kPci), m_old);
    if (count == 4) {
      setFaults("{}");
    }
  });
  write();
  expectSuccess();
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 4)));
}

TEST_F(FlashWriteTest, KeepsHangingWhileTheDescriptionIsUnreadable) {
  const std::string before = m_adapters.description(kPci);
  setFaults(R"({"hang": {"atPercent": 30}})");
  m_clock.afterEachSleep([&](int count) {
    if (count == 1) {
      m_adapters.describe(kPci, "half an edit");
    }
    if (count == 4) {
      m_adapters.describe(kPci, before);
    }
  });
  write();
  expectSuccess();
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 4)));
}

TEST_F(FlashWriteTest, GoesOnAtItsRateAfterAHang) {
  setRate(1000000);
  setFaults(R"({"hang": {"atPercent": 50}})");
  m_clock.afterEachSleep([&](int) {
    if (m_clock.slept() >= seconds(5)) {
      setFaults("{}");
    }
  });
  write();
  expectSuccess();
  // 4.9 s of hanging and 200 ms of writing, of which none is caught up with.
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 98 + 4)));
}

TEST_F(FlashWriteTest, FailsBehindAHang) {
  setFaults(R"({"hang": {"atPercent": 30},
                 "write": {"atPercent": 60, "code": 17, "text": "later"}})");
  m_clock.afterEachSleep([&](int) {
    EXPECT_EQ(m_progress.percent(), 30U);
    setFaults("{}");
  });
  write();
  expectFailure(17, "later");
  EXPECT_EQ(m_progress.percent(), 60U);
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 1)));
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
    if (path.filename().string().starts_with("flash.rom.new-")) {
      content.writable()[0x12345] ^= 1;
    }
  };
  write();
  expectFailure(206, "differs from the image at 0x12345");
}

TEST_F(FlashWriteTest, ComparesTheSizeOfWhatItReadsBack) {
  m_files.afterRead = [](const std::filesystem::path& path, FileBytes& content) {
    if (path.filename().string().starts_with("flash.rom.new-")) {
      content.shorten(content.view().size() - 1);
    }
  };
  write();
  expectFailure(206, "differs from the image");
}

TEST_F(FlashWriteTest, UsesNothingThatIsThereAlready) {
  std::filesystem::create_directory(m_adapters.folder(kPci) / "flash.rom.new");
  write();
  EXPECT_EQ(m_code, 0U) << m_text;
  EXPECT_EQ(m_adapters.flash(kPci), m_new);
}

}  // namespace
