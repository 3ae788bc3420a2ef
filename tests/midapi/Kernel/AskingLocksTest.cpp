#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/AskingLocks.h"
#include "midapi/Kernel/Errands.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::AskingLocks;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::IsEmpty;

class AskingLocksTest : public testing::Test {
 protected:
  std::string pathFor(const std::string& name) const {
    const auto order = m_locks.orderFor(name);
    return order.empty() ? "" : std::string(order.begin() + sizeof(ma::LockHead), order.end());
  }

  test::TempDirectory m_directory;
  const std::filesystem::path m_folder =
      m_directory.path() / ("orvex-asks." + std::to_string(::geteuid()));
  const AskingLocks m_locks{m_directory.path(), milliseconds(200)};
};

TEST_F(AskingLocksTest, AreInAFolderOfTheUsers) {
  EXPECT_EQ(pathFor("0000:03:00.0.rest"), m_folder / "0000:03:00.0.rest");
  EXPECT_TRUE(std::filesystem::is_directory(m_folder));
  EXPECT_EQ(pathFor("a"), m_folder / "a");
}

TEST_F(AskingLocksTest, AreNoneWhereTheFolderIsNotTheUsersAlone) {
  std::filesystem::create_directory(m_folder);
  ::chmod(m_folder.c_str(), 0777);
  EXPECT_EQ(pathFor("a"), "");
  std::filesystem::remove(m_folder);
  std::filesystem::create_directory_symlink(m_directory.path(), m_folder);
  EXPECT_EQ(pathFor("a"), "");
}

TEST_F(AskingLocksTest, AreNoneWithoutACommonFolder) {
  EXPECT_THAT(AskingLocks({}, milliseconds(1)).orderFor("a"), IsEmpty());
  EXPECT_THAT(AskingLocks(m_directory.path() / "none", milliseconds(1)).orderFor("a"), IsEmpty());
  EXPECT_FALSE(m_locks.heldByRootSince("a"));
}

TEST_F(AskingLocksTest, SaySinceWhenSomebodyHangs) {
  const std::int64_t time = 1'700'000'000;
  std::vector<std::uint8_t> reply(sizeof time);
  std::memcpy(reply.data(), &time, sizeof time);
  EXPECT_EQ(AskingLocks::heldSince(EALREADY, reply), ma::SystemTime(seconds(time)));
  EXPECT_FALSE(AskingLocks::heldSince(0, reply));
  EXPECT_FALSE(AskingLocks::heldSince(EALREADY, {1, 2}));
}

}  // namespace
