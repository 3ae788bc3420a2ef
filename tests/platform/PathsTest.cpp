#include <gtest/gtest.h>

#include "platform/Paths.h"
#include "tests/support/CurrentDirectory.h"
#include "tests/support/TempDirectory.h"

namespace {

TEST(Paths, AreMadeAbsoluteFromWhereTheProcessStands) {
  const test::TempDirectory directory;
  const test::CurrentDirectory inside(directory.path());
  const std::filesystem::path here = std::filesystem::current_path();
  std::error_code error;

  EXPECT_EQ(platform::makeAbsolute("new.rom", error), here / "new.rom");
  EXPECT_EQ(platform::makeNormal("a/../new.rom", error), here / "new.rom");
  EXPECT_EQ(platform::makeAbsolute(here / "new.rom", error), here / "new.rom");
  EXPECT_FALSE(error);
}

TEST(Paths, AreAbsoluteOrNot) {
  EXPECT_TRUE(platform::isAbsolute(std::filesystem::current_path() / "new.rom"));
  EXPECT_FALSE(platform::isAbsolute("folder/new.rom"));
  EXPECT_FALSE(platform::isAbsolute(""));
}

TEST(Paths, OfNothingAreAFault) {
  std::error_code error;
  EXPECT_EQ(platform::makeAbsolute("", error), std::filesystem::path());
  EXPECT_TRUE(error);
}

}  // namespace
