#include <gtest/gtest.h>

#include "cli/LocalReason.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"

namespace {

using cli::findLocalReason;

class LocalReasonTest : public testing::Test {
 protected:
  LocalReasonTest() {
    m_adapters.makeAdapter("0000:03:00", test::RomBuilder().add(test::RomImage::legacy()).build());
  }

  [[nodiscard]] const std::string& file() const { return m_file; }

 private:
  test::AdapterFixture m_adapters;
  const test::AdaptersVariable m_variable{m_adapters.directory()};
  test::TempDirectory m_directory;
  const std::string m_file =
      m_directory.write("a.rom", test::RomBuilder().add(test::RomImage::legacy()).build()).string();
};

TEST_F(LocalReasonTest, IsNoneWhereNothingIsRefused) {
  EXPECT_EQ(findLocalReason("0000:03:00", file(), ""), "");
  EXPECT_EQ(findLocalReason("0000:03:00.1", file(), "IMG_PXE"), "");
}

TEST_F(LocalReasonTest, IsNoneWhereTheLibraryCannotBeAsked) {
  EXPECT_EQ(findLocalReason("0000:09:00", file(), ""), "");
  EXPECT_EQ(findLocalReason("0000:03:00", file() + ".missing", ""), "");
  EXPECT_EQ(findLocalReason("0000:03:00", "", ""), "");
  EXPECT_EQ(findLocalReason("0000:03:00", file(), "IMG_MOON"), "");
}

}  // namespace
