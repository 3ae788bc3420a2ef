// What the cache of adapters owes to the identities that POSIX file systems give.

#include <ctime>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "midapi/FlashBackend.h"
#include "midapi/Virtual/AdapterCache.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::AdapterAddress;
using ma::AdapterCache;
using testing::ElementsAre;
using testing::SizeIs;

constexpr const char* kPci = "0000:03:00";
constexpr AdapterAddress kAddress{0, 3, 0};

class PosixAdapterCacheTest : public testing::Test {
 protected:
  PosixAdapterCacheTest() { m_adapters.makeAdapter(kPci, {}); }

  [[nodiscard]] std::filesystem::path description() const {
    return m_adapters.folder(kPci) / "adapter.json";
  }

  utils::StringArray ports() { return m_cache.ports(m_adapters.directory()); }

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
