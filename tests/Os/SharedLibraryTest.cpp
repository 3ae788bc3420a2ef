#include <cstdlib>
#include <gmock/gmock.h>

#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string modulePath() {
  return test::programBeside(std::string("os_test_module") + os::sharedLibrarySuffix());
}

auto loading(const std::string& path) {
  return [path] { os::loadSharedLibrary(path); };
}

TEST(SharedLibrary, RunsItsStartUpCodeWhenLoaded) {
  ASSERT_EQ(std::getenv("QUORVEL_TEST_MODULE"), nullptr);
  os::loadSharedLibrary(modulePath());

  EXPECT_STREQ(std::getenv("QUORVEL_TEST_MODULE"), "loaded");
  unsetenv("QUORVEL_TEST_MODULE");
}

TEST(SharedLibrary, IsNotStartedAgainWhenLoadedTwice) {
  os::loadSharedLibrary(modulePath());
  unsetenv("QUORVEL_TEST_MODULE");
  os::loadSharedLibrary(modulePath());

  EXPECT_EQ(std::getenv("QUORVEL_TEST_MODULE"), nullptr);
}

TEST(SharedLibrary, ThatIsMissingIsNamedWithTheLoadersReason) {
  const test::TempDirectory directory;
  const std::string path = directory.path() / "100%s.so";

  EXPECT_THAT(loading(path), test::ThrowsExactly<utils::Exception>(
                                 AllOf(StartsWith("Could not load the library '" + path + "': "),
                                       HasSubstr("No such file"))));
}

TEST(SharedLibrary, ThatIsNoneIsRefused) {
  const test::TempDirectory directory;
  const std::string path = directory.write("text.so", std::string("no library"));

  EXPECT_THAT(loading(path), test::ThrowsExactly<utils::Exception>(
                                 StartsWith("Could not load the library '" + path + "': ")));
}

}  // namespace
