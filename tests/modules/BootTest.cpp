// Firmware that the modules have flashed runs: a virtual machine boots from the adapter's flash.

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <numeric>
#include <optional>
#include <string>

#include "tests/modules/ModuleHost.h"
#include "tests/modules/VirtualMachine.h"

namespace {

using test::Bytes;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::VirtualMachine;

constexpr const char* kRom = "/usr/lib/ipxe/qemu/pxe-virtio.rom";
// Where this ROM has its product string, and a byte that puts its sum right.
constexpr std::size_t kProduct = 0x70;
constexpr std::size_t kSum = 0x06;
constexpr const char* kShippedProduct = "iPXE";

class Boot : public testing::Test {
 protected:
  void SetUp() override {
    m_emulator = VirtualMachine::findEmulator();
    if (!m_emulator) {
      GTEST_SKIP() << "qemu-system-x86_64 is not installed: no machine to boot";
    }
    if (!std::filesystem::exists(kRom)) {
      GTEST_SKIP() << kRom << " is not installed: no firmware that boots";
    }
    m_host.makeAdapter(kAdapter, romOf("OLD1"));
    m_host.load();
  }

  // Returns the ROM with another product string of as many letters.
  static Bytes romOf(const std::string& product) {
    Bytes rom = test::readBytes(kRom);
    const std::string shipped(rom.begin() + kProduct, rom.begin() + kProduct + 4);
    EXPECT_EQ(shipped, kShippedProduct);
    std::copy(product.begin(), product.end(), rom.begin() + kProduct);
    const auto sum = std::accumulate(rom.begin(), rom.end(), 0u);
    rom[kSum] = static_cast<std::uint8_t>(rom[kSum] - sum);
    return rom;
  }

  std::uint32_t install(const Bytes& image) {
    return m_host.install(kFirstPort, m_host.makeImage(image));
  }

  // Boots from the adapter's flash until its firmware names itself.
  void expectBootOf(const std::string& product) {
    VirtualMachine machine(*m_emulator, m_host.flashPath(kAdapter));
    EXPECT_TRUE(machine.shows(product + " (PCI ")) << machine.console();
  }

  std::optional<std::filesystem::path> m_emulator;
  test::ModuleHost m_host;
};

TEST_F(Boot, RunsTheFirmwareOfAnUpdate) {
  ASSERT_EQ(install(romOf("NEW1")), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);

  expectBootOf("NEW1");
}

TEST_F(Boot, RunsTheOldFirmwareAfterARefusedUpdate) {
  Bytes damaged = romOf("NEW1");
  ++damaged[damaged.size() / 2];
  ASSERT_EQ(install(damaged), 5u);

  expectBootOf("OLD1");
}

}  // namespace
