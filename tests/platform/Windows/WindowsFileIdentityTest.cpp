#include <gmock/gmock.h>
#include <optional>

#include "platform/FileIdentity.h"
#include "tests/support/TempDirectory.h"

namespace {

TEST(WindowsFileIdentity, IsNone) {
  const test::TempDirectory directory;

  EXPECT_EQ(platform::identifyFile(directory.write("file", std::string("text"))), std::nullopt);
}

}  // namespace
