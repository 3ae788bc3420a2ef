#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>
#include <vector>

#include "midapi/Digest.h"
#include "midapi/Hex.h"
#include "midapi/Virtual/UpdateJournal.h"
#include "midapi/Virtual/VirtualFlashBackend.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"

namespace {

using ma::BootType;
using ma::FlashFault;
using ma::hexText;
using ma::nativeFileSystem;
using ma::PortId;
using ma::VirtualFlashBackend;
using ma::WriteProgress;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

const PortId kPort{{0, 3, 0}, 0};

class VirtualFlashBackendTest : public testing::Test {
 protected:
  template <class Operation>
  std::uint32_t codeOf(Operation operation) {
    try {
      operation();
    } catch (const FlashFault& fault) {
      return fault.code();
    }
    return 0;
  }

  test::AdapterFixture m_adapters;
  test::WatchedFileSystem m_files;
  test::FakeClock m_clock;
  VirtualFlashBackend m_backend{m_files, [this] { return m_adapters.directory(); }, m_clock};
};

TEST_F(VirtualFlashBackendTest, OrdersPortsByPciAddress) {
  for (const char* pci : {"0000:0a:00", "0001:00:00", "0000:03:01", "0000:03:00"}) {
    m_adapters.makeAdapter(pci, {});
  }
  EXPECT_THAT(m_backend.enumerateAdapters(),
              ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:03:01.0", "0000:03:01.1",
                          "0000:0a:00.0", "0000:0a:00.1", "0001:00:00.0", "0001:00:00.1"));
}

TEST_F(VirtualFlashBackendTest, PassesOverWhatIsNoAdapter) {
  m_adapters.makeAdapter("0000:03:00", {});
  m_adapters.makeAdapter("0000:04:00", {});
  m_adapters.set("0000:04:00", "/ports", "[]");
  std::filesystem::create_directories(m_adapters.directory() / "0000-05-00");
  std::filesystem::create_directories(m_adapters.directory() / "notes");
  EXPECT_THAT(m_backend.enumerateAdapters(), ElementsAre("0000:03:00.0", "0000:03:00.1"));
}

TEST_F(VirtualFlashBackendTest, TakesAMissingDirectoryForNoAdapters) {
  VirtualFlashBackend backend(
      m_files, [this] { return m_adapters.directory() / "none"; }, m_clock);
  EXPECT_THAT(backend.enumerateAdapters(), IsEmpty());
  EXPECT_EQ(codeOf([&] { static_cast<void>(backend.facts(kPort)); }), 201U);
}

TEST_F(VirtualFlashBackendTest, AsksForTheDirectoryEachTime) {
  std::filesystem::path directory = m_adapters.directory() / "none";
  VirtualFlashBackend backend(
      m_files, [&] { return directory; }, m_clock);
  m_adapters.makeAdapter("0000:03:00", {});
  EXPECT_THAT(backend.enumerateAdapters(), IsEmpty());
  directory = m_adapters.directory();
  EXPECT_THAT(backend.enumerateAdapters(), SizeIs(2));
}

TEST_F(VirtualFlashBackendTest, ReadsEachOfAThousandAdaptersOnceToListThem) {
  for (std::uint32_t number = 0; number < 1000; ++number) {
    m_adapters.makeAdapter("0000:" + hexText(number / 32, 2) + ":" + hexText(number % 32, 2), {});
  }
  EXPECT_THAT(m_backend.enumerateAdapters(), SizeIs(2000));
  EXPECT_EQ(m_files.listings, 1U);
  EXPECT_EQ(m_files.reads, 1000U);
}

TEST_F(VirtualFlashBackendTest, OutlinesAdaptersWithoutALookAtTheirFlash) {
  m_adapters.makeAdapter("0000:03:00", {1});
  m_adapters.makeAdapter("0000:04:00", {1});
  m_adapters.set("0000:04:00", "/ports", "[]");
  const ma::AdapterList list = m_backend.outline(ma::OutlineDepth::Description);
  ASSERT_EQ(list.adapters.size(), 1U);
  EXPECT_EQ(list.adapters[0].pci, "0000:03:00");
  EXPECT_EQ(list.adapters[0].ports.size(), 2U);
  EXPECT_EQ(list.adapters[0].flashBytes, 0U);
  EXPECT_EQ(m_files.listings, 1U);
  EXPECT_EQ(m_files.reads, 2U);
  EXPECT_EQ(m_backend.outline(ma::OutlineDepth::Flash).adapters.at(0).flashBytes, 1U);
}

TEST_F(VirtualFlashBackendTest, OutlinesWhatADecidedUpdateMakesOfAnAdapter) {
  m_adapters.makeAdapter("0000:03:00", {1});
  const Bytes flash{2};
  ma::UpdateJournal journal{
      "flash.rom.new-0123456789abcdef", flash.size(), ma::digestOf(flash), {}};
  journal.change.bootTypes[1] = BootType::Iscsi;
  const std::filesystem::path folder = m_adapters.folder("0000:03:00");
  std::ofstream(folder / journal.flashName, std::ios::binary) << '\2';
  std::ofstream(folder / "update.json") << ma::formatJournal(journal);
  EXPECT_EQ(m_backend.outline(ma::OutlineDepth::Description).adapters.at(0).ports.at(1).bootType,
            BootType::Iscsi);

  std::ofstream(folder / "update.json") << "no journal";
  EXPECT_EQ(m_backend.outline(ma::OutlineDepth::Description).adapters.size(), 1U);
}

TEST_F(VirtualFlashBackendTest, FindsOneAdapterAmongManyWithoutASearch) {
  for (const char* pci : {"0000:03:00", "0000:04:00", "0000:05:00", "0000:06:00"}) {
    m_adapters.makeAdapter(pci, {1});
  }
  EXPECT_EQ(m_backend.facts(kPort).device, 0x1041);
  EXPECT_THAT(m_backend.readFlash(kPort).view(), SizeIs(1));
  EXPECT_EQ(m_files.listings, 0U);
  EXPECT_EQ(m_files.reads, 2U);
}

TEST_F(VirtualFlashBackendTest, KnowsOnlyThePortsOfTheDescription) {
  m_adapters.makeAdapter("0000:03:00", {});
  WriteProgress progress;
  const PortId port{{0, 3, 0}, 2};
  EXPECT_EQ(codeOf([&] { static_cast<void>(m_backend.facts(port)); }), 201U);
  EXPECT_EQ(codeOf([&] { m_backend.setBootType(port, BootType::Pxe); }), 201U);
  EXPECT_EQ(codeOf([&] { m_backend.setCapabilityWord(port, 1); }), 201U);
  EXPECT_EQ(codeOf([&] { m_backend.writeFlash(port, {}, progress); }), 201U);
}

TEST_F(VirtualFlashBackendTest, FailsTheCapabilityWordOnDemand) {
  m_adapters.makeAdapter("0000:03:00", {});
  m_adapters.set("0000:03:00", "/faults", R"({"capabilityWord": {"code": 18, "text": "no"}})");
  EXPECT_EQ(codeOf([&] { m_backend.setCapabilityWord(kPort, 8); }), 18U);
  EXPECT_EQ(m_adapters.get("0000:03:00", "/capabilityWord"), "");
}

TEST_F(VirtualFlashBackendTest, ChangesAnAdapterAtTheEndOfItsUpdate) {
  m_adapters.makeAdapter("0000:03:00", {1});
  const Bytes image(100, 'n');
  WriteProgress progress;
  EXPECT_TRUE(m_backend.beginUpdate(kPort.adapter));
  m_backend.setBootType({kPort.adapter, 1}, BootType::None);
  m_backend.writeFlash(kPort, image, progress);
  EXPECT_EQ(progress.percent(), 100U);
  EXPECT_THAT(m_backend.readFlash(kPort).view(), ElementsAre(1));
  EXPECT_THAT(m_backend.readFlashToBe(kPort).view(), SizeIs(100));
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/1/bootType"), "1");
  m_backend.setCapabilityWord(kPort, 8);
  m_backend.endUpdate(kPort.adapter);
  EXPECT_THAT(m_backend.readFlash(kPort).view(), SizeIs(100));
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/1/bootType"), "0");
  EXPECT_EQ(m_adapters.get("0000:03:00", "/capabilityWord"), "8");
}

TEST_F(VirtualFlashBackendTest, TakesBackAnUpdateWhoseCapabilityWordFails) {
  m_adapters.makeAdapter("0000:03:00", {1});
  m_adapters.set("0000:03:00", "/faults", R"({"capabilityWord": {"code": 18, "text": "no"}})");
  const Bytes image(100, 'n');
  WriteProgress progress;
  EXPECT_TRUE(m_backend.beginUpdate(kPort.adapter));
  m_backend.setBootType(kPort, BootType::None);
  m_backend.writeFlash(kPort, image, progress);
  EXPECT_EQ(codeOf([&] { m_backend.setCapabilityWord(kPort, 8); }), 18U);
  m_backend.endUpdate(kPort.adapter);
  EXPECT_EQ(m_adapters.flash("0000:03:00"), Bytes{1});
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/0/bootType"), "1");
  EXPECT_THAT(m_adapters.filesOf("0000:03:00"), ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(VirtualFlashBackendTest, BeginsOneUpdateOfAnAdapterAtATime) {
  EXPECT_TRUE(m_backend.beginUpdate({0, 3, 0}));
  EXPECT_FALSE(m_backend.beginUpdate({0, 3, 0}));
  EXPECT_TRUE(m_backend.beginUpdate({1, 3, 0}));
  m_backend.endUpdate({0, 3, 0});
  EXPECT_TRUE(m_backend.beginUpdate({0, 3, 0}));
}

TEST_F(VirtualFlashBackendTest, LeavesOtherAdaptersOutOfAnUpdate) {
  m_adapters.makeAdapter("0000:03:00", {1});
  m_adapters.makeAdapter("0001:03:00", {1});
  EXPECT_TRUE(m_backend.beginUpdate(kPort.adapter));
  m_backend.setBootType({{1, 3, 0}, 0}, BootType::Uefi);
  EXPECT_EQ(m_adapters.get("0001:03:00", "/ports/0/bootType"), "4");
}

TEST_F(VirtualFlashBackendTest, LosesNoChangeOfConcurrentCallers) {
  m_adapters.makeAdapter("0000:03:00", {});
  VirtualFlashBackend backend(
      nativeFileSystem(), [this] { return m_adapters.directory(); }, m_clock);
  const auto store = [&](std::uint8_t function) {
    for (int round = 0; round < 20; ++round) {
      backend.setBootType({kPort.adapter, function},
                          round % 2 == 0 ? BootType::None : BootType::Uefi);
    }
  };
  std::thread other(store, 1);
  store(0);
  other.join();
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/0/bootType"), "4");
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/1/bootType"), "4");
}

// Each waits for the others, and none fails for want of the adapter, which all take by its lock.
TEST_F(VirtualFlashBackendTest, SetsBootTypesAndCapabilityWordForManyAtOnce) {
  m_adapters.makeAdapter("0000:03:00", {});
  VirtualFlashBackend backend(
      nativeFileSystem(), [this] { return m_adapters.directory(); }, m_clock);
  std::atomic<int> failures{0};
  const auto repeat = [&](auto change) {
    for (std::uint32_t round = 1; round <= 20; ++round) {
      failures += codeOf([&] { change(round); }) != 0 ? 1 : 0;
    }
  };
  const auto setBootType = [&](std::uint8_t function) {
    repeat([&backend, function](std::uint32_t round) {
      backend.setBootType({kPort.adapter, function},
                          round % 2 == 0 ? BootType::Uefi : BootType::None);
    });
  };
  const auto setWord = [&] {
    repeat([&](std::uint32_t round) { backend.setCapabilityWord(kPort, round); });
  };
  {
    const std::jthread left(setBootType, std::uint8_t{0});
    const std::jthread right(setBootType, std::uint8_t{1});
    const std::jthread word(setWord);
    const std::jthread sameWord(setWord);
  }
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/0/bootType"), "4");
  EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/1/bootType"), "4");
  EXPECT_EQ(m_adapters.get("0000:03:00", "/capabilityWord"), "20");
}

// Within an update, too, which is one for all of its changes.
TEST_F(VirtualFlashBackendTest, CollectsTheBootTypesOfManyForOneUpdate) {
  m_adapters.makeAdapter("0000:03:00", {1});
  VirtualFlashBackend backend(
      nativeFileSystem(), [this] { return m_adapters.directory(); }, m_clock);
  for (int round = 0; round < 20; ++round) {
    EXPECT_TRUE(backend.beginUpdate(kPort.adapter));
    std::atomic<int> failures{0};
    const auto setBootType = [&](std::uint8_t function) {
      failures += codeOf([&] {
                    backend.setBootType({kPort.adapter, function},
                                        round % 2 == 0 ? BootType::Uefi : BootType::None);
                  }) != 0
                      ? 1
                      : 0;
    };
    {
      const std::jthread left(setBootType, std::uint8_t{0});
      const std::jthread right(setBootType, std::uint8_t{1});
    }
    backend.setCapabilityWord(kPort, 8);
    backend.endUpdate(kPort.adapter);
    EXPECT_EQ(failures, 0);
    const char* const expected = round % 2 == 0 ? "4" : "0";
    EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/0/bootType"), expected);
    EXPECT_EQ(m_adapters.get("0000:03:00", "/ports/1/bootType"), expected);
  }
}

TEST_F(VirtualFlashBackendTest, ShowsReadersAWholeDescriptionWhileItIsChanged) {
  m_adapters.makeAdapter("0000:03:00", {});
  VirtualFlashBackend backend(
      nativeFileSystem(), [this] { return m_adapters.directory(); }, m_clock);
  std::atomic<bool> isDone{false};
  std::thread writer([&] {
    for (std::uint32_t word = 0; word < 50; ++word) {
      backend.setCapabilityWord(kPort, word);
    }
    isDone = true;
  });
  std::size_t looks = 0;
  while (!isDone) {
    EXPECT_EQ(backend.facts(kPort).device, 0x1041);
    ++looks;
  }
  writer.join();
  EXPECT_GT(looks, 0U);
}

}  // namespace
