// A process that is killed while it updates an adapter leaves it the old one or the new one.

#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>
#include <random>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "midapi/MidApi.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/RomParser.h"

namespace {

using ma::BootType;
using ma::FlashUpdate;
using ma::setBootType;
using ma::updateCapabilityWord;
using ma::writeFlashImage;
using std::chrono::microseconds;
using std::chrono::steady_clock;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;

constexpr const char* kPci = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";
constexpr const char* kSibling = "0000:03:00.1";
constexpr std::chrono::seconds kPatience{20};

class CrashSafety : public testing::Test {
 protected:
  CrashSafety() { m_adapters.makeAdapter(kPci, m_old); }
  ~CrashSafety() override { killWriter(); }

  bool write() const {
    std::uint32_t code = 0;
    std::string text;
    const FlashUpdate update(kPort);
    setBootType(kPort, BootType::None);
    setBootType(kSibling, BootType::None);
    return writeFlashImage(kPort, m_new.data(), static_cast<std::uint32_t>(m_new.size()), code,
                           text) &&
           updateCapabilityWord(kPort, {}, code, text);
  }
  // Starts a process that writes the new image.
  void startWriter() {
    m_leftBehind = m_adapters.filesOf(kPci);
    m_writer = ::fork();
    ASSERT_GE(m_writer, 0);
    if (m_writer == 0) {
      ::_exit(write() ? 0 : 1);
    }
  }
  void waitForTemporaryOf(std::uintmax_t size) const {
    const auto deadline = steady_clock::now() + kPatience;
    while (temporarySize() < size) {
      ASSERT_LT(steady_clock::now(), deadline);
    }
  }
  // Of the running writer's, 0 where there is none.
  std::uintmax_t temporarySize() const {
    for (const std::string& name : m_adapters.filesOf(kPci)) {
      if (isTemporary(name) && std::ranges::count(m_leftBehind, name) == 0) {
        std::error_code gone;
        const std::uintmax_t size =
            std::filesystem::file_size(m_adapters.folder(kPci) / name, gone);
        return gone ? 0 : size;
      }
    }
    return 0;
  }
  static bool isTemporary(const std::string& name) { return name.starts_with("flash.rom.new-"); }
  static void spinFor(microseconds time) {
    const auto end = steady_clock::now() + time;
    while (steady_clock::now() < end) {
    }
  }
  void killWriter() {
    if (m_writer > 0) {
      ::kill(m_writer, SIGKILL);
      ::waitpid(std::exchange(m_writer, -1), nullptr, 0);
    }
  }
  void expectOldOrNew() {
    const ma::AdapterListing adapter =
        ma::VirtualAdapters(m_adapters.directory()).list().adapters.at(0);
    const Bytes flash = m_adapters.flash(kPci);
    if (adapter.capabilityWord == 0) {
      EXPECT_EQ(adapter.ports.at(0).bootType, BootType::Pxe);
      EXPECT_EQ(adapter.ports.at(1).bootType, BootType::Pxe);
      EXPECT_TRUE(flash == m_old) << test::parseRom(flash);
    } else {
      EXPECT_EQ(adapter.ports.at(0).bootType, BootType::None);
      EXPECT_EQ(adapter.ports.at(1).bootType, BootType::None);
      EXPECT_TRUE(flash == m_new) << test::parseRom(flash);
    }
  }
  void makeOldAgain() {
    std::filesystem::remove_all(m_adapters.folder(kPci));
    m_adapters.makeAdapter(kPci, m_old);
  }

  const Bytes m_old = RomBuilder().add(RomImage::efi().units(400).seed(1)).build();
  const Bytes m_new = RomBuilder().add(RomImage::efi().units(600).seed(2)).build();
  test::AdapterFixture m_adapters;
  test::AdaptersVariable m_variable{m_adapters.directory()};
  pid_t m_writer = -1;
  // What was in the folder when the writer started.
  std::vector<std::string> m_leftBehind;
};

TEST_F(CrashSafety, KeepsTheOldFlashWhenAWriterIsKilledOnItsWay) {
  m_adapters.set(kPci, "/writeRate", "1500000");
  std::mt19937 random(11);
  for (int round = 0; round < 10; ++round) {
    startWriter();
    waitForTemporaryOf(1 + random() % (m_new.size() / 2));
    killWriter();
    EXPECT_TRUE(m_adapters.flash(kPci) == m_old);
    EXPECT_TRUE(std::ranges::any_of(m_adapters.filesOf(kPci), isTemporary));
  }
  EXPECT_TRUE(write());
  EXPECT_TRUE(m_adapters.flash(kPci) == m_new);
  EXPECT_THAT(m_adapters.filesOf(kPci), testing::ElementsAre("adapter.json", "flash.rom"));
}

// As fast as the disk, so that some of the kills meet the last steps: flush, compare, replacement.
TEST_F(CrashSafety, HoldsOneOfBothWhateverTheMomentOfTheKill) {
  std::mt19937 random(12);
  for (int round = 0; round < 40; ++round) {
    startWriter();
    spinFor(microseconds(random() % 4000));
    killWriter();
    expectOldOrNew();
    if (m_adapters.flash(kPci) == m_new) {
      makeOldAgain();
    }
  }
  EXPECT_TRUE(write());
  EXPECT_THAT(m_adapters.filesOf(kPci), testing::ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(CrashSafety, LeavesTheRunningUpdateOfAnotherProcessAlone) {
  m_adapters.set(kPci, "/faults", R"({"hang": {"atPercent": 50}})");
  startWriter();
  waitForTemporaryOf(m_new.size() / 2);
  const std::vector<std::string> files = m_adapters.filesOf(kPci);
  EXPECT_THAT(files, testing::Contains("update.lock"));
  expectOldOrNew();
  EXPECT_EQ(m_adapters.filesOf(kPci), files);
  killWriter();
  m_adapters.set(kPci, "/faults", "{}");
  EXPECT_TRUE(write());
  EXPECT_THAT(m_adapters.filesOf(kPci), testing::ElementsAre("adapter.json", "flash.rom"));
}

}  // namespace
