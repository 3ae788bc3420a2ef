// A host that is killed in the middle of a write leaves the old flash or the new one.

#include <filesystem>
#include <gmock/gmock.h>
#include <iostream>
#include <random>
#include <set>
#include <system_error>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/RomParser.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::Bytes;
using test::ChildProcess;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::RomBuilder;
using test::RomImage;

constexpr int kRounds = 10;

class KilledHost : public testing::Test {
 protected:
  KilledHost() { m_host.makeAdapter(kAdapter, m_old, "\"writeRate\": 4000000"); }

  bool startUpdate() { return m_host.install(kFirstPort, m_image) == 4096; }

  // Returns a process that loads the modules and updates the adapter.
  ChildProcess startHost() {
    return ChildProcess([this](ChildProcess::Link& parent) {
      m_host.load();
      if (!startUpdate()) {
        return 1;
      }
      static_cast<void>(parent.await('e'));
      return 0;
    });
  }

  // Waits for the moment at which so many bytes are written: to the file that becomes the flash,
  // or to the flash itself.
  bool awaitWritten(std::size_t count) const {
    return test::waitUntil(
        [this, count] { return m_host.flash(kAdapter) == m_new || hasTemporaryOf(count); });
  }

  // Returns whether the host that was started last has such a file, which killed ones left behind
  // before.
  bool hasTemporaryOf(std::size_t size) const {
    for (const std::filesystem::path& path : temporaries()) {
      std::error_code gone;
      if (!m_leftBehind.contains(path) && std::filesystem::file_size(path, gone) >= size && !gone) {
        return true;
      }
    }
    return false;
  }

  std::set<std::filesystem::path> temporaries() const {
    std::set<std::filesystem::path> found;
    const std::filesystem::path folder = m_host.flashPath(kAdapter).parent_path();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.path().filename().string().starts_with("flash.rom.new-")) {
        found.insert(entry.path());
      }
    }
    return found;
  }

  void expectOldOrNew() const {
    const Bytes flash = m_host.flash(kAdapter);
    EXPECT_TRUE(flash == m_old || flash == m_new) << test::parseRom(flash);
  }

  const Bytes m_old = RomBuilder().add(RomImage::efi().units(300).seed(1)).build();
  const Bytes m_new = RomBuilder().add(RomImage::efi().units(600).seed(2)).build();
  test::ModuleHost m_host;
  std::set<std::filesystem::path> m_leftBehind;
  const std::string m_image = m_host.makeImage(m_new);
};

TEST_F(KilledHost, LeavesTheOldFlashOrTheNewOne) {
  const unsigned seed = std::random_device{}();
  std::cout << "seed " << seed << std::endl;
  std::mt19937 random(seed);
  for (int round = 0; round < kRounds; ++round) {
    m_host.makeAdapter(kAdapter, m_old, "\"writeRate\": 4000000");
    const std::size_t moment = random() % (m_new.size() + 1);
    SCOPED_TRACE("killed after " + std::to_string(moment) + " bytes");
    m_leftBehind = temporaries();
    ChildProcess host = startHost();
    ASSERT_TRUE(awaitWritten(moment));
    host.kill();
    expectOldOrNew();
  }

  m_host.load();
  ASSERT_TRUE(startUpdate());
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_EQ(m_host.flash(kAdapter), m_new);
}

}  // namespace
