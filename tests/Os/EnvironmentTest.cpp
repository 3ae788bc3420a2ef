#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

#include "Os/Environment.h"
#include "Utils/Exception.h"
#include "tests/support/Throws.h"
#include "tests/support/Variables.h"

namespace {

TEST(ComputerName, IsThatOfTheEnvironment) {
  os::setEnvironment("COMPUTERNAME", "NODE-7");
  EXPECT_EQ(os::getComputerName(), "NODE-7");
}

TEST(ComputerName, IsLocalhostWhenTheEnvironmentHasNone) {
  test::unsetVariable("COMPUTERNAME");
  EXPECT_EQ(os::getComputerName(), "localhost");

  os::setEnvironment("COMPUTERNAME", "");
  EXPECT_EQ(os::getComputerName(), "localhost");
}

TEST(MachineName, IsTheSameEachTime) {
  EXPECT_NE(os::getMachineName(), "");
  EXPECT_EQ(os::getMachineName(), os::getMachineName());
}

TEST(Environment, IsReplacedWhenSetAgain) {
  os::setEnvironment("QUORVEL_TEST", "one");
  os::setEnvironment("QUORVEL_TEST", "two");

  EXPECT_STREQ(std::getenv("QUORVEL_TEST"), "two");
}

TEST(Environment, IsNotSetWithoutAName) {
  EXPECT_THAT([] { os::setEnvironment("", "one"); },
              test::ThrowsExactly<utils::Exception>(
                  testing::HasSubstr("The environment variable '' could not be set: error ")));
}

TEST(ProgramPath, IsAbsoluteAndNamesThisProgram) {
  const std::filesystem::path path = os::getProgramPath();

  EXPECT_TRUE(path.is_absolute());
  EXPECT_TRUE(std::filesystem::is_regular_file(path));
  EXPECT_EQ(path.stem(), "os_tests");
}

}  // namespace
