#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "cli/Context.h"
#include "cli/Posix/Password.h"
#include "client/Fault.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Variables.h"

namespace {

class PasswordTest : public testing::Test {
 protected:
  ~PasswordTest() override { test::unsetVariable("QUORVEL_PASSWORD"); }

  [[nodiscard]] std::string fileOf(const std::string& content) const {
    return m_directory.writePrivate("password", content).string();
  }

  static std::string refusalOf(const std::string& file) {
    try {
      return "found " + cli::findPassword(file).value_or("none");
    } catch (const client::Fault& fault) {
      EXPECT_EQ(fault.kind(), client::Fault::Kind::Usage);
      return fault.what();
    }
  }

 private:
  test::TempDirectory m_directory;
};

TEST_F(PasswordTest, IsTheFirstLineOfTheFile) {
  EXPECT_EQ(cli::findPassword(fileOf(" se cret \nsecond\n")), " se cret ");
  EXPECT_EQ(cli::findPassword(fileOf("secret\r\n")), "secret");
  EXPECT_EQ(cli::findPassword(fileOf("secret")), "secret");
}

TEST_F(PasswordTest, IsThatOfTheEnvironmentWithoutAFile) {
  test::setVariable("QUORVEL_PASSWORD", "from there");
  EXPECT_EQ(cli::findPassword(""), "from there");
  EXPECT_EQ(cli::findPassword(fileOf("from the file\n")), "from the file");
}

TEST_F(PasswordTest, IsNowhereWhereNeitherIsGiven) {
  EXPECT_EQ(cli::findPassword(""), std::nullopt);
}

TEST_F(PasswordTest, IsNotFoundInAFileThatLacksIt) {
  EXPECT_EQ(refusalOf("/nowhere/password"),
            "--password-file: '/nowhere/password' cannot be read; check the path and its "
            "permissions");
  EXPECT_THAT(refusalOf(fileOf("\nsecret\n")), testing::HasSubstr("is empty"));
  EXPECT_THAT(refusalOf(fileOf("")), testing::HasSubstr("is empty"));
}

TEST_F(PasswordTest, IsNotTakenFromAFileOfOthers) {
  const std::string file = fileOf("secret\n");
  std::filesystem::permissions(file, std::filesystem::perms::others_read,
                               std::filesystem::perm_options::add);
  EXPECT_EQ(refusalOf(file), "--password-file: '" + file +
                                 "' can be read or changed by others than its owner; run: "
                                 "chmod 600 " +
                                 file);
}

TEST_F(PasswordTest, IsNotLookedForInAWholeDisk) {
  EXPECT_THAT(refusalOf(fileOf(std::string(100'000, 'x'))), testing::HasSubstr("is longer than"));
}

}  // namespace
