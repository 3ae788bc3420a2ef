#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Os/FileCalls.h"
#include "daemon/Posix/FileDigest.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;

class FileDigest : public testing::Test {
 protected:
  [[nodiscard]] std::string write(const std::string& content) const {
    return m_directory.write("file", content).string();
  }

  const test::TempDirectory m_directory;
};

TEST_F(FileDigest, IsTheSha256OfTheContent) {
  EXPECT_EQ(quorveld::FileDigest(write("abc")).digest(),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(quorveld::FileDigest(write("")).digest(),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(quorveld::FileDigest(write(std::string(1'000'000, 'a'))).digest(),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST_F(FileDigest, IsNotWaitedForWithoutEnd) {
  const std::string path = write(std::string(32'000'000, 'a'));
  const auto patience = os::fileCalls().setPatience(std::chrono::milliseconds(0));
  EXPECT_THAT(quorveld::FileDigest(path).digest(), HasSubstr("the file system does not answer"));
  os::fileCalls().setPatience(patience);
  // The call that was given up comes back by itself.
  EXPECT_TRUE(
      test::waitUntil([&path] { return quorveld::FileDigest(path).digest().size() == 64; }));
}

TEST_F(FileDigest, IsNotThatOfAnotherContentThanTheFileHadBefore) {
  const std::string path = write("abc");
  const quorveld::FileDigest digest(path);
  const auto stamp = platform::findStamp(path);
  ASSERT_TRUE(test::waitUntil([&] {
    static_cast<void>(write("xyz"));
    return platform::findStamp(path) != stamp;
  }));
  EXPECT_THAT(digest.digest(), HasSubstr("has changed"));
}

TEST_F(FileDigest, IsNoneOfWhatIsNoFile) {
  EXPECT_THAT(quorveld::FileDigest("/missing").digest(), HasSubstr("cannot be read"));
  EXPECT_THAT(quorveld::FileDigest(m_directory.path().string()).digest(),
              HasSubstr("cannot be read"));
  EXPECT_THAT(quorveld::FileDigest("").digest(), HasSubstr("cannot be read"));
}

}  // namespace
