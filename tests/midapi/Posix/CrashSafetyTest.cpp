// A process that is killed while it writes leaves the old flash or the new one.

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
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/RomParser.h"

namespace {

using ma::writeFlashImage;
using std::chrono::microseconds;
using std::chrono::steady_clock;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;

constexpr const char* kPci = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";
constexpr std::chrono::seconds kPatience{20};

class CrashSafety : public testing::Test {
 protected:
  CrashSafety() { m_adapters.makeAdapter(kPci, m_old); }
  ~CrashSafety() override { killWriter(); }

  bool write() const {
    std::uint32_t code = 0;
    std::string text;
    return writeFlashImage(kPort, m_new.data(), static_cast<std::uint32_t>(m_new.size()), code,
                           text);
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
    const Bytes flash = m_adapters.flash(kPci);
    EXPECT_TRUE(flash == m_old || flash == m_new) << test::parseRom(flash);
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
  EXPECT_THAT(m_adapters.filesOf(kPci), testing::IsSupersetOf({"adapter.json", "flash.rom"}));
}

// As fast as the disk, so that some of the kills meet the last steps: flush, compare, replacement.
TEST_F(CrashSafety, HoldsOneOfBothWhateverTheMomentOfTheKill) {
  std::mt19937 random(12);
  for (int round = 0; round < 40; ++round) {
    startWriter();
    spinFor(microseconds(random() % 4000));
    killWriter();
    expectOldOrNew();
  }
  EXPECT_TRUE(write());
}

}  // namespace
