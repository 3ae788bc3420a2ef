// URIs of files that only POSIX has.

#include <gmock/gmock.h>

#include "Os/Uri.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/TempDirectory.h"

namespace {

using utils::Uri;

TEST(PosixUri, MayHaveAColonInItsName) {
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("a:b:c.bin", std::string("x"));

  EXPECT_TRUE(Uri("file://" + file.string()).exists());
}

TEST(PosixUri, DoesNotExistForADevice) {
  EXPECT_FALSE(Uri("file:///dev/zero").exists());
}

TEST(PosixUri, DoesNotExistWhateverTheLookAtTheFileThrows) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  const test::TempDirectory directory;
  const Uri uri("file://" + (directory.path() / "missing").string());
  const test::FailingCall noMemory(test::SystemCall::Allocate, test::kNoStandardException);

  EXPECT_FALSE(uri.exists());
}

}  // namespace
