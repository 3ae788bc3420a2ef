#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

#include "Os/Environment.h"
#include "Os/SharedLibrary.h"
#include "Utils/Exception.h"
#include "tests/Os/Platform.h"
#include "tests/support/CurrentDirectory.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/Variables.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string modulePath() {
  std::filesystem::path program(os::getProgramPath());
  return program.replace_filename(std::string("os_test_module") + os::sharedLibrarySuffix())
      .string();
}

auto loading(const std::string& path) {
  return [path] { os::loadSharedLibrary(path); };
}

TEST(SharedLibrary, RunsItsStartUpCodeWhenLoaded) {
  ASSERT_EQ(std::getenv("QUORVEL_TEST_MODULE"), nullptr);
  os::loadSharedLibrary(modulePath());

  EXPECT_STREQ(std::getenv("QUORVEL_TEST_MODULE"), "loaded");
  test::unsetVariable("QUORVEL_TEST_MODULE");
}

TEST(SharedLibrary, IsNotStartedAgainWhenLoadedTwice) {
  os::loadSharedLibrary(modulePath());
  test::unsetVariable("QUORVEL_TEST_MODULE");
  os::loadSharedLibrary(modulePath());

  EXPECT_EQ(std::getenv("QUORVEL_TEST_MODULE"), nullptr);
}

TEST(SharedLibrary, ThatIsMissingIsNamedWithTheLoadersReason) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "100%s.so").string();

  EXPECT_THAT(loading(path), test::ThrowsExactly<utils::Exception>(
                                 AllOf(StartsWith("Could not load the library '" + path + "': "),
                                       HasSubstr(test::kLibraryIsMissing))));
}

TEST(SharedLibrary, ThatIsNoneIsRefused) {
  const test::TempDirectory directory;
  const std::string path = directory.write("text.so", std::string("no library")).string();

  EXPECT_THAT(loading(path), test::ThrowsExactly<utils::Exception>(
                                 StartsWith("Could not load the library '" + path + "': ")));
}

TEST(SharedLibrary, WithARelativePathIsRefused) {
  const std::string name = std::string("os_test_module") + os::sharedLibrarySuffix();
  const test::CurrentDirectory beside(os::getProgramPath().parent_path());
  for (const std::string& path : {name, "./" + name, std::string()}) {
    EXPECT_THAT(loading(path),
                test::ThrowsExactly<utils::Exception>("Could not load the library '" + path +
                                                      "': its path is not absolute"));
  }
}

}  // namespace
