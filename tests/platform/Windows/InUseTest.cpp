#include <gmock/gmock.h>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "platform/Windows/InUse.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(InUse, IsWhatOthersKeepOpen) {
  EXPECT_TRUE(platform::isInUse(ERROR_SHARING_VIOLATION));
  EXPECT_TRUE(platform::isInUse(ERROR_LOCK_VIOLATION));
  EXPECT_FALSE(platform::isInUse(ERROR_ACCESS_DENIED));
}

TEST(InUse, IsAFileThatSomebodyHasOpenHoweverHeSharesIt) {
  const test::TempDirectory directory;
  const std::filesystem::path path = directory.write("file", std::string("x"));
  EXPECT_FALSE(platform::isOpenElsewhere(path));
  EXPECT_FALSE(platform::isOpenElsewhere(directory.path() / "none"));
  {
    const platform::Handle open(CreateFileW(path.c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                            nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(platform::isOpenElsewhere(path));
  }
  EXPECT_FALSE(platform::isOpenElsewhere(path));
}

TEST(InUse, IsWaitedForUntilItPasses) {
  test::FakeClock clock;
  int attempts = 0;
  const auto attempt = [&attempts]() -> platform::SystemError {
    return ++attempts < 4 ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
  };
  EXPECT_EQ(platform::retryWhile(platform::isInUse, clock, attempt), 0U);
  EXPECT_THAT(clock.sleeps(), ElementsAre(Pair(platform::kInUsePause, 3)));
}

TEST(InUse, IsWaitedForNoLongerThanThePatience) {
  test::FakeClock clock;
  const auto attempt = []() -> platform::SystemError { return ERROR_SHARING_VIOLATION; };
  EXPECT_EQ(platform::retryWhile(platform::isInUse, clock, attempt),
            platform::SystemError{ERROR_SHARING_VIOLATION});
  EXPECT_THAT(clock.sleeps(), ElementsAre(Pair(platform::kInUsePause, 2000)));
}

TEST(InUse, IsNoOtherFailure) {
  test::FakeClock clock;
  const auto attempt = []() -> platform::SystemError { return ERROR_FILE_NOT_FOUND; };
  EXPECT_EQ(platform::retryWhile(platform::isInUse, clock, attempt),
            platform::SystemError{ERROR_FILE_NOT_FOUND});
  EXPECT_THAT(clock.sleeps(), IsEmpty());
}

}  // namespace
