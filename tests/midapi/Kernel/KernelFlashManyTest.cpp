// A machine with a thousand adapters: what is done for each is done for none twice.

#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "tests/midapi/Kernel/KernelBackendFixture.h"

namespace {

using test::kKernelFunction;
using test::kKernelPort;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kAdapters = 1000;

class KernelFlashOfMany : public test::KernelBackendFixture {
 protected:
  KernelFlashOfMany() {
    for (std::uint8_t bus = 0x10; m_ports.size() < kAdapters - 1; ++bus) {
      for (std::uint8_t device = 0; device < 32 && m_ports.size() < kAdapters - 1; ++device) {
        const ma::PortId port{{0, bus, device}, 0};
        m_sysfs.addFunction(toString(port));
        m_sysfs.bindDriver(toString(port), "testnic");
        store("1.0.0", "7.1.0", toString(port));
        m_ports.push_back(port);
      }
    }
    m_ports.push_back(kKernelPort);
  }
  // Returns how many functions' drivers were asked since the last call.
  std::size_t countAsked() {
    std::size_t count = 0;
    for (const std::string& text : m_drivers.takeAsked()) {
      count += static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1;
    }
    return count;
  }

  std::vector<ma::PortId> m_ports;
};

TEST_F(KernelFlashOfMany, AreAskedOnceForAList) {
  EXPECT_THAT(m_backend.enumerateAdapters(), SizeIs(kAdapters));
  EXPECT_EQ(countAsked(), 0U);
  const std::size_t reads = m_files.reads;
  EXPECT_THAT(m_backend.list().adapters, SizeIs(kAdapters));
  EXPECT_LE(m_files.reads - reads, 3 * kAdapters);
  EXPECT_EQ(countAsked(), kAdapters);
  EXPECT_THAT(m_backend.list().adapters, SizeIs(kAdapters));
  EXPECT_EQ(countAsked(), 0U);
}

TEST_F(KernelFlashOfMany, AreAskedOnceWhereTheyAreLookedAtOneByOne) {
  const test::Bytes file = test::kernelPackage("1.1.0", "7.2.0");
  for (int look = 0; look < 2; ++look) {
    const std::size_t reads = m_files.reads;
    for (const ma::PortId& port : m_ports) {
      EXPECT_EQ(m_backend.firmwareVersions(port)[0].stored, "1.0.0");
      EXPECT_EQ(m_backend.compare(port, file), ma::ImageComparison::Newer);
    }
    EXPECT_EQ(countAsked(), kAdapters);
    EXPECT_LE(m_files.reads - reads, 3 * kAdapters);
    passASecond();
  }
}

TEST_F(KernelFlashOfMany, AnswerManyWhileOneIsWritten) {
  // The one of the fixture counts what it does, for one thread alone.
  ma::KernelFlashBackend backend(
      ma::nativeFileSystem(), m_places, m_drivers, m_names, [this] { return m_settings; }, m_clock);
  static_cast<void>(backend.list());
  m_progress.start();
  std::latch isWriting(1);
  std::latch mayEnd(1);
  m_drivers.onDevlinkFlash = [&](const std::string&, const std::string&, const auto&) {
    isWriting.count_down();
    mayEnd.wait();
    store("1.1.0", "7.2.0");
    return ma::NetlinkAck{};
  };
  std::thread writer(
      [&] { backend.writeFlash(kKernelPort, test::kernelPackage("1.1.0", "7.2.0"), m_progress); });
  isWriting.wait();
  passASecond();
  static_cast<void>(m_drivers.takeAsked());
  std::atomic<std::size_t> next{0};
  std::atomic<int> right{0};
  std::vector<std::thread> threads;
  threads.reserve(16);
  for (int i = 0; i < 16; ++i) {
    threads.emplace_back([&] {
      for (std::size_t query = next++; query < 1000; query = next++) {
        const ma::PortId port = query % 4 == 0 ? kKernelPort : m_ports[query];
        right += backend.firmwareVersions(port).at(0).stored == "1.0.0" ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(right, 1000);
  const std::vector<std::string> asked = m_drivers.takeAsked();
  EXPECT_FALSE(asked.empty());
  for (const std::string& text : asked) {
    EXPECT_EQ(text.find(kKernelFunction), std::string::npos);
  }
  mayEnd.count_down();
  writer.join();
  EXPECT_EQ(backend.firmwareVersions(kKernelPort)[0].stored, "1.1.0");
}

}  // namespace
