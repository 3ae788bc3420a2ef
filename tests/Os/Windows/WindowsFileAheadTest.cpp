#include <gmock/gmock.h>
#include <string>

#include "Os/FileAhead.h"
#include "tests/Os/FilesFixture.h"

namespace {

using WindowsFileAhead = test::FilesFixture;

TEST_F(WindowsFileAhead, ReadsNothingSoThatTheFileIsReadInItsTurn) {
  const std::string path = file("image", "12345");
  os::FileAhead ahead(path, 100);
  EXPECT_THAT(ahead.content(), testing::IsEmpty());
  file("image", "another");
  const os::FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(os::getFileSize(path), 7);
  const os::FileContent content = os::readContent(path, 100);
  EXPECT_EQ(std::string(content.bytes.get(), content.bytes.get() + content.size), "another");
  EXPECT_FALSE(ahead.isTaken());
}

}  // namespace
