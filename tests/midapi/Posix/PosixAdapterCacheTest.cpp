// What the cache of adapters owes to the identities that POSIX file systems give.

#include <ctime>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <vector>

#include "midapi/Digest.h"
#include "midapi/FlashBackend.h"
#include "midapi/Virtual/AdapterCache.h"
#include "midapi/Virtual/VirtualFlashBackend.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::AdapterAddress;
using ma::AdapterCache;
using testing::ElementsAre;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

constexpr const char* kPci = "0000:03:00";
constexpr AdapterAddress kAddress{0, 3, 0};

class PosixAdapterCacheTest : public testing::Test {
 protected:
  PosixAdapterCacheTest() { m_adapters.makeAdapter(kPci, {}); }

  [[nodiscard]] std::filesystem::path description() const {
    return m_adapters.folder(kPci) / "adapter.json";
  }

  [[nodiscard]] std::filesystem::path flashPath() const {
    return m_adapters.folder(kPci) / "flash.rom";
  }

  utils::StringArray ports() { return m_cache.ports(m_adapters.directory()); }

  std::uint64_t flashDigest() { return m_cache.flashDigest(m_adapters.directory(), kAddress); }

  // Has the cache know the flash by its identity, and returns its digest.
  std::uint64_t settleFlash() {
    EXPECT_TRUE(test::waitUntil([this] {
      static_cast<void>(flashDigest());
      m_files.reads = 0;
      static_cast<void>(flashDigest());
      return m_files.reads == 0;
    }));
    return flashDigest();
  }

  // Has the cache know everything by identity.
  void settle() {
    ASSERT_TRUE(test::waitUntil([this] {
      static_cast<void>(ports());
      const std::size_t before = m_files.reads + m_files.listings;
      static_cast<void>(ports());
      return m_files.reads + m_files.listings == before;
    }));
    m_files.reads = 0;
    m_files.listings = 0;
  }

  test::AdapterFixture m_adapters;
  test::WatchedFileSystem m_files;
  AdapterCache m_cache{m_files};
};

TEST_F(PosixAdapterCacheTest, ReadsNothingAgainThatIsLeftAlone) {
  settle();
  EXPECT_THAT(ports(), ElementsAre("0000:03:00.0", "0000:03:00.1"));
  EXPECT_EQ(m_cache.description(m_adapters.directory(), kAddress)->device, 0x1041);
  EXPECT_EQ(m_files.reads, 0U);
  EXPECT_EQ(m_files.listings, 0U);
}

TEST_F(PosixAdapterCacheTest, ReadsNothingAgainThatIsNoDescription) {
  m_adapters.describe(kPci, "{}");
  settle();
  EXPECT_THAT(ports(), SizeIs(0));
  EXPECT_EQ(m_files.reads, 0U);
}

TEST_F(PosixAdapterCacheTest, ReadsOneDescriptionAgainWhereOneChanges) {
  m_adapters.makeAdapter("0000:04:00", {});
  settle();
  m_adapters.set(kPci, "/ports", R"([{"function": 5, "mac": "02:00:00:03:00:05"}])");
  EXPECT_THAT(ports(), ElementsAre("0000:03:00.5", "0000:04:00.0", "0000:04:00.1"));
  EXPECT_EQ(m_files.reads, 1U);
}

TEST_F(PosixAdapterCacheTest, SeesAReplacementWithTheSizeAndTheTimesOfTheOldFile) {
  settle();
  struct stat old {};
  ASSERT_EQ(::stat(description().c_str(), &old), 0);
  std::string text = m_adapters.description(kPci);
  text.replace(text.find("1041"), 4, "1042");
  m_adapters.describe(kPci, text);
  const timespec times[] = {old.st_atim, old.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, description().c_str(), times, 0), 0);

  EXPECT_EQ(m_cache.description(m_adapters.directory(), kAddress)->device, 0x1042);
}

TEST_F(PosixAdapterCacheTest, SeesARewriteOfTheSameSizeWhoseTimeIsSetBack) {
  settle();
  struct stat old {};
  ASSERT_EQ(::stat(description().c_str(), &old), 0);
  const int file = ::open(description().c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  const auto position = static_cast<off_t>(m_adapters.description(kPci).find("1041"));
  EXPECT_EQ(::pwrite(file, "1042", 4, position), 4);
  const timespec times[] = {old.st_atim, old.st_mtim};
  EXPECT_EQ(::futimens(file, times), 0);
  EXPECT_EQ(::close(file), 0);

  EXPECT_EQ(m_cache.description(m_adapters.directory(), kAddress)->device, 0x1042);
}

TEST_F(PosixAdapterCacheTest, ReadsNoFlashAgainThatIsLeftAlone) {
  const Bytes flash(1000, 'f');
  m_adapters.makeAdapter(kPci, flash);
  EXPECT_EQ(settleFlash(), ma::digestOf(flash));
  EXPECT_EQ(m_files.reads, 0U);
}

TEST_F(PosixAdapterCacheTest, ReadsAFlashAgainThatIsInDoubt) {
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  const std::uint64_t before = settleFlash();
  m_files.isInDoubt = true;
  EXPECT_EQ(flashDigest(), before);
  EXPECT_EQ(flashDigest(), before);
  EXPECT_EQ(m_files.reads, 2U);
}

TEST_F(PosixAdapterCacheTest, ReadsAFlashAgainThatChangedWhileItWasRead) {
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  ASSERT_TRUE(test::waitUntil([this] { return m_files.identity(flashPath()).has_value(); }));
  m_files.afterRead = [this](const auto&, const auto&) {
    m_adapters.makeAdapter(kPci, Bytes(1000, 'g'));
    EXPECT_TRUE(test::waitUntil([this] { return m_files.identity(flashPath()).has_value(); }));
  };
  EXPECT_EQ(flashDigest(), ma::digestOf(Bytes(1000, 'f')));
  m_files.afterRead = [](const auto&, const auto&) {};
  EXPECT_EQ(settleFlash(), ma::digestOf(Bytes(1000, 'g')));
}

TEST_F(PosixAdapterCacheTest, KeepsNothingOfAFlashWhoseAdapterIsGone) {
  const test::AdapterFixture others;
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  const std::uint64_t before = settleFlash();
  std::filesystem::rename(m_adapters.folder(kPci), others.folder(kPci));
  static_cast<void>(ports());
  std::filesystem::rename(others.folder(kPci), m_adapters.folder(kPci));
  static_cast<void>(ports());
  m_files.reads = 0;
  EXPECT_EQ(flashDigest(), before);
  EXPECT_EQ(m_files.reads, 1U);
}

TEST_F(PosixAdapterCacheTest, SeesAnotherFlashOfTheSameSizeWhoseTimeIsSetBack) {
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  static_cast<void>(settleFlash());
  struct stat old {};
  ASSERT_EQ(::stat(flashPath().c_str(), &old), 0);
  m_adapters.makeAdapter(kPci, Bytes(1000, 'g'));
  const timespec times[] = {old.st_atim, old.st_mtim};
  ASSERT_EQ(::utimensat(AT_FDCWD, flashPath().c_str(), times, 0), 0);
  EXPECT_EQ(flashDigest(), ma::digestOf(Bytes(1000, 'g')));
}

TEST_F(PosixAdapterCacheTest, SeesAFlashThatIsRemoved) {
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  static_cast<void>(settleFlash());
  std::filesystem::remove(flashPath());
  EXPECT_EQ(flashDigest(), ma::digestOf({}));
}

TEST_F(PosixAdapterCacheTest, TellsABackEndTheDigestOfAFlashThatItNeedNotRead) {
  m_adapters.makeAdapter(kPci, Bytes(1000, 'f'));
  test::FakeClock clock;
  ma::VirtualFlashBackend backend(
      m_files, [this] { return m_adapters.directory(); }, clock);
  const ma::PortId port{kAddress, 0};
  std::uint64_t before = 0;
  EXPECT_TRUE(test::waitUntil([&] {
    static_cast<void>(backend.enumerateAdapters());
    m_files.reads = 0;
    before = backend.digest(port);
    return m_files.reads == 0;
  }));
  m_adapters.makeAdapter(kPci, Bytes(1000, 'g'));
  EXPECT_NE(backend.digest(port), before);
}

TEST_F(PosixAdapterCacheTest, SeesALinkThatComesToLeadToAnAdapter) {
  const test::AdapterFixture others;
  std::filesystem::create_directory_symlink(others.folder("0000:05:00"),
                                            m_adapters.folder("0000:05:00"));
  ASSERT_TRUE(
      test::waitUntil([&] { return m_files.identity(m_adapters.directory()).has_value(); }));
  EXPECT_THAT(ports(), SizeIs(2));
  others.makeAdapter("0000:05:00", {});
  EXPECT_THAT(ports(), SizeIs(4));
}

TEST_F(PosixAdapterCacheTest, SeesThatAnotherFolderTakesAnAdaptersPlace) {
  const test::AdapterFixture others;
  others.makeAdapter(kPci, {});
  others.set(kPci, "/deviceId", "\"1042\"");
  settle();
  std::filesystem::rename(m_adapters.folder(kPci), others.directory() / "old");
  std::filesystem::rename(others.folder(kPci), m_adapters.folder(kPci));

  EXPECT_EQ(m_cache.description(m_adapters.directory(), kAddress)->device, 0x1042);
  EXPECT_THAT(ports(), SizeIs(2));
}

}  // namespace
