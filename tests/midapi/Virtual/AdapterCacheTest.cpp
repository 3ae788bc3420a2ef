#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "midapi/Digest.h"
#include "midapi/FlashBackend.h"
#include "midapi/Virtual/AdapterCache.h"
#include "midapi/Virtual/UpdateJournal.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"

namespace {

using ma::AdapterAddress;
using ma::AdapterCache;
using ma::FlashFault;
using ma::nativeFileSystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

constexpr const char* kPci = "0000:03:00";
constexpr const char* kOtherPci = "0000:04:00";
constexpr AdapterAddress kAddress{0, 3, 0};

class AdapterCacheTest : public testing::Test {
 protected:
  AdapterCacheTest() {
    m_adapters.makeAdapter(kPci, {});
    m_adapters.makeAdapter(kOtherPci, {});
  }

  utils::StringArray ports() { return m_cache.ports(m_adapters.directory()); }
  std::uint16_t device() { return m_cache.description(m_adapters.directory(), kAddress)->device; }

  std::uint64_t flashDigest() { return m_cache.flashDigest(m_adapters.directory(), kAddress); }

  // Writes a file in the adapter's folder, and returns its path.
  [[nodiscard]] std::filesystem::path write(const std::string& name,
                                            const std::string& text) const {
    std::filesystem::path path = m_adapters.folder(kPci) / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  // Overwrites the device's digits where they stand, so that the file keeps its size and its name.
  void writeDevice(const char* digits) const {
    const std::string text = m_adapters.description(kPci);
    std::fstream file(m_adapters.folder(kPci) / "adapter.json", std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(text.find("104")));
    file << digits << std::flush;
    ASSERT_TRUE(file.good());
  }

  test::AdapterFixture m_adapters;
  test::WatchedFileSystem m_files;
  AdapterCache m_cache{m_files};
};

TEST_F(AdapterCacheTest, KnowsThePortsOfAllAdapters) {
  EXPECT_THAT(ports(), ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:04:00.0", "0000:04:00.1"));
  EXPECT_THAT(ports(), ElementsAre("0000:03:00.0", "0000:03:00.1", "0000:04:00.0", "0000:04:00.1"));
}

TEST_F(AdapterCacheTest, SeesAnAdapterThatIsAdded) {
  EXPECT_EQ(ports().size(), 4U);
  m_adapters.makeAdapter("0000:05:00", {});
  EXPECT_EQ(ports().size(), 6U);
}

TEST_F(AdapterCacheTest, SeesAnAdapterThatIsRemoved) {
  EXPECT_EQ(ports().size(), 4U);
  std::filesystem::remove_all(m_adapters.folder(kPci));
  EXPECT_THAT(ports(), ElementsAre("0000:04:00.0", "0000:04:00.1"));
  EXPECT_THROW(device(), FlashFault);
  std::filesystem::remove_all(m_adapters.directory());
  EXPECT_THAT(ports(), IsEmpty());
}

TEST_F(AdapterCacheTest, SeesADescriptionThatIsRemoved) {
  EXPECT_EQ(ports().size(), 4U);
  std::filesystem::remove(m_adapters.folder(kPci) / "adapter.json");
  EXPECT_THAT(ports(), ElementsAre("0000:04:00.0", "0000:04:00.1"));
}

TEST_F(AdapterCacheTest, SeesADescriptionThatIsReplaced) {
  EXPECT_EQ(ports().size(), 4U);
  m_adapters.set(kPci, "/ports", R"([{"function": 5, "mac": "02:00:00:03:00:05"}])");
  EXPECT_THAT(ports(), ElementsAre("0000:03:00.5", "0000:04:00.0", "0000:04:00.1"));
  EXPECT_EQ(m_cache.description(m_adapters.directory(), kAddress)->ports.size(), 1U);
}

TEST_F(AdapterCacheTest, SeesADescriptionThatIsBrokenAndPutRight) {
  const std::string whole = m_adapters.description(kPci);
  m_adapters.describe(kPci, "{}");
  EXPECT_THAT(ports(), ElementsAre("0000:04:00.0", "0000:04:00.1"));
  EXPECT_THAT(ports(), ElementsAre("0000:04:00.0", "0000:04:00.1"));
  EXPECT_THROW(device(), FlashFault);
  m_adapters.describe(kPci, whole);
  EXPECT_EQ(ports().size(), 4U);
  EXPECT_EQ(device(), 0x1041);
}

TEST_F(AdapterCacheTest, SeesEachOfManyRewritesOfTheSameSize) {
  constexpr int kRounds = 300;
  for (int round = 0; round < kRounds; ++round) {
    static_cast<void>(ports());
    writeDevice(round % 2 == 0 ? "1042" : "1043");
    ASSERT_EQ(device(), round % 2 == 0 ? 0x1042 : 0x1043) << round;
    ASSERT_EQ(ports().size(), 4U);
  }
}

TEST_F(AdapterCacheTest, DigestsTheFlashOfAnUpdateThatIsDecidedUntilItIsGivenUp) {
  m_adapters.makeAdapter(kPci, Bytes(9, 'o'));
  EXPECT_EQ(flashDigest(), ma::digestOf(Bytes(9, 'o')));
  const std::string name = "flash.rom.new-0123456789abcdef";
  const Bytes image(9, 'n');
  const auto flash = write(name, {image.begin(), image.end()});
  const auto journal =
      write("update.json", ma::formatJournal({name, image.size(), ma::digestOf(image), {}}));
  EXPECT_EQ(flashDigest(), ma::digestOf(image));
  std::filesystem::remove(flash);
  std::filesystem::remove(journal);
  EXPECT_EQ(flashDigest(), ma::digestOf(Bytes(9, 'o')));
}

TEST_F(AdapterCacheTest, DigestsTheFlashOfTheDirectoryThatItIsAskedFor) {
  const test::AdapterFixture others;
  m_adapters.makeAdapter(kPci, Bytes(9, 'a'));
  others.makeAdapter(kPci, Bytes(9, 'b'));
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(flashDigest(), ma::digestOf(Bytes(9, 'a')));
    EXPECT_EQ(m_cache.flashDigest(others.directory(), kAddress), ma::digestOf(Bytes(9, 'b')));
  }
}

TEST_F(AdapterCacheTest, FollowsItsCallerToAnotherDirectory) {
  const test::AdapterFixture others;
  others.makeAdapter("0000:0a:00", {});
  EXPECT_EQ(ports().size(), 4U);
  EXPECT_THAT(m_cache.ports(others.directory()), ElementsAre("0000:0a:00.0", "0000:0a:00.1"));
  EXPECT_EQ(ports().size(), 4U);
}

TEST_F(AdapterCacheTest, ShowsEachOfManyReadersAWholeDescriptionWhileItIsReplaced) {
  constexpr int kReaders = 3;
  constexpr int kRounds = 60;
  // The counters of the watched file system are for one thread.
  AdapterCache cache(nativeFileSystem());
  std::atomic<bool> isDone{false};
  std::atomic<int> looks{0};
  std::vector<std::thread> readers;
  for (int number = 0; number < kReaders; ++number) {
    readers.emplace_back([&] {
      do {
        EXPECT_THAT(cache.ports(m_adapters.directory()).size(), AnyOf(3U, 4U));
        EXPECT_THAT(cache.description(m_adapters.directory(), kAddress)->ports.size(),
                    AnyOf(1U, 2U));
        ++looks;
      } while (!isDone);
    });
  }
  const std::string two = m_adapters.description(kPci);
  m_adapters.set(kPci, "/ports", R"([{"function": 5, "mac": "02:00:00:03:00:05"}])");
  const std::string one = m_adapters.description(kPci);
  for (int round = 0; round < kRounds; ++round) {
    m_adapters.describe(kPci, round % 2 == 0 ? two : one);
    EXPECT_EQ(cache.ports(m_adapters.directory()).size(), round % 2 == 0 ? 4U : 3U) << round;
  }
  isDone = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  EXPECT_GE(looks.load(), kReaders);
}

}  // namespace
