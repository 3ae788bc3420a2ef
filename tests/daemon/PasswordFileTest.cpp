#include <filesystem>
#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

#include "daemon/DaemonConfig.h"
#include "daemon/PasswordFile.h"
#include "platform/Posix/PrivateFile.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// Of the password "secret", and of "geheim".
const std::string kSecret =
    "$6$abcdefgh$ltjgWl6579NluT/Vi1nwEvcil.G5Nbc4NiXZaNGStk8PSwGfQv72N2CKPPrVACtLtip/cZ/1GM/"
    "O6IND4WQhG.";
const std::string kGeheim = "$5$abcdefgh$azU9PNNJw9essBuwq5yihWY9lFXM0dF54Ph4sAxX.YB";
const std::string kAddress = "192.0.2.7";

class PasswordFileTest : public testing::Test {
 protected:
  void write(const std::string& content) {
    // In one step, and with a time that differs from the last one's whatever the file system keeps.
    m_directory.write("new", content);
    fs::permissions(m_directory.path() / "new", fs::perms::owner_read | fs::perms::owner_write);
    m_time += std::chrono::seconds(1);
    fs::last_write_time(m_directory.path() / "new", m_time);
    fs::rename(m_directory.path() / "new", path());
  }

  [[nodiscard]] std::string path() const { return (m_directory.path() / "users").string(); }

  void expectRefused(const std::string& content, const std::string& text) {
    write(content);
    EXPECT_THAT([this] { quorveld::PasswordFileAuthenticator users(path()); },
                test::ThrowsExactly<quorveld::ConfigurationFault>(
                    AllOf(StartsWith("password-file: "), HasSubstr(path()), HasSubstr(text))))
        << content;
  }

  test::TempDirectory m_directory;
  fs::file_time_type m_time = fs::file_time_type::clock::now();
};

TEST_F(PasswordFileTest, GivesUsersTheirRoles) {
  write("# users\n\nanna:" + kSecret + ":operator\nbert:" + kGeheim + ":reader\n");
  quorveld::PasswordFileAuthenticator users(path());
  EXPECT_EQ(users.check("anna", "secret", kAddress), wbem::Role::Operator);
  EXPECT_EQ(users.check("bert", "geheim", kAddress), wbem::Role::Reader);
}

TEST_F(PasswordFileTest, RefusesWrongPasswordsAndUnknownUsers) {
  write("anna:" + kSecret + ":operator\n");
  quorveld::PasswordFileAuthenticator users(path());
  EXPECT_FALSE(users.check("anna", "geheim", kAddress));
  EXPECT_FALSE(users.check("anna", "", kAddress));
  EXPECT_FALSE(users.check("bert", "secret", kAddress));
  EXPECT_FALSE(users.check("", "secret", kAddress));
  EXPECT_FALSE(users.check("# users", "secret", kAddress));
}

TEST_F(PasswordFileTest, LetsNobodyInFromAnEmptyFile) {
  write("# nobody\n");
  quorveld::PasswordFileAuthenticator users(path());
  EXPECT_FALSE(users.check("anna", "secret", kAddress));
}

TEST_F(PasswordFileTest, NamesADamagedLine) {
  expectRefused("\nanna\n", path() + ":2: is not USER:HASH:ROLE");
  expectRefused("anna:operator\n", ":1: is not USER:HASH:ROLE");
  expectRefused(":" + kSecret + ":operator\n", ":1: is not USER:HASH:ROLE");
  expectRefused("anna:secret:operator\n",
                ":1: user 'anna' has a hash that is damaged or of a weak");
  expectRefused("anna:" + kSecret + ":admin\n", ":1: 'admin' is no role");
  expectRefused("anna:" + kSecret + ":reader\nanna:" + kSecret + ":operator\n",
                ":2: user 'anna' is there a second time");
}

TEST_F(PasswordFileTest, DemandsAFileThatIsTheOwnersAlone) {
  write("anna:" + kSecret + ":operator\n");
  for (const fs::perms others : {fs::perms::group_read, fs::perms::group_write,
                                 fs::perms::others_read, fs::perms::others_write}) {
    fs::permissions(path(), fs::perms::owner_read | fs::perms::owner_write | others);
    EXPECT_THAT([this] { quorveld::PasswordFileAuthenticator users(path()); },
                test::ThrowsExactly<quorveld::ConfigurationFault>(
                    HasSubstr("can be read or changed by others than its owner; run: chmod 600")));
  }
}

TEST_F(PasswordFileTest, DemandsAFileThatIsThere) {
  for (const std::string& missing : {path(), m_directory.path().string()}) {
    EXPECT_THAT(
        [&missing] { quorveld::PasswordFileAuthenticator users(missing); },
        test::ThrowsExactly<quorveld::ConfigurationFault>(
            "password-file: '" + missing + "' cannot be read; check the path and its permissions"));
  }
}

TEST_F(PasswordFileTest, ReadsAFileAnewThatHasChanged) {
  write("anna:" + kSecret + ":operator\n");
  quorveld::PasswordFileAuthenticator users(path());
  const std::uint64_t before = users.revision();
  EXPECT_EQ(users.revision(), before);

  write("bert:" + kGeheim + ":reader\n");
  EXPECT_NE(users.revision(), before);
  EXPECT_FALSE(users.check("anna", "secret", kAddress));
  EXPECT_EQ(users.check("bert", "geheim", kAddress), wbem::Role::Reader);
}

// What a change of the file leaves behind, and what is logged of it.
class SpoiltPasswordFile : public PasswordFileTest {
 protected:
  // Expects that nobody gets in, that a login is forgotten, and one record that says why.
  void expectClosed(const std::string& reason) {
    EXPECT_FALSE(m_users.check("anna", "secret", kAddress)) << reason;
    EXPECT_NE(m_users.revision(), m_before) << reason;
    EXPECT_FALSE(m_users.check("anna", "secret", kAddress)) << reason;
    EXPECT_THAT(records(), ElementsAre(AllOf(StartsWith("password-file: "), HasSubstr(reason),
                                             HasSubstr("Nobody can log in"))));
  }
  [[nodiscard]] std::string written(const std::string& content) {
    write(content);
    return path();
  }
  void expectOpenAgain() {
    m_log.clear();
    EXPECT_EQ(m_users.check("anna", "secret", kAddress), wbem::Role::Operator);
    EXPECT_THAT(records(), ElementsAre(HasSubstr("is in order again")));
  }
  [[nodiscard]] std::vector<std::string> records() const {
    return m_log.messages("quorveld::PasswordFileAuthenticator::readIfChanged");
  }

  const std::string kAnna = "anna:" + kSecret + ":operator\n";
  quorveld::PasswordFileAuthenticator m_users{written(kAnna)};
  const std::uint64_t m_before = m_users.revision();
  test::LogCapture m_log;
};

TEST_F(SpoiltPasswordFile, LetsNobodyInWhileItIsDamaged) {
  write("anna:broken:operator\n");
  expectClosed(path() + ":1: user 'anna' has a hash that is damaged");
  write(kAnna);
  expectOpenAgain();
}

TEST_F(SpoiltPasswordFile, LetsNobodyInWhileItIsGone) {
  fs::remove(path());
  expectClosed("'" + path() + "' cannot be read; check the path and its permissions");
  write(kAnna);
  expectOpenAgain();
}

TEST_F(SpoiltPasswordFile, LetsNobodyInWhileOthersCanReadIt) {
  fs::permissions(path(), fs::perms::group_read, fs::perm_options::add);
  expectClosed("can be read or changed by others than its owner; run: chmod 600 " + path());
  fs::permissions(path(), fs::perms::group_read, fs::perm_options::remove);
  expectOpenAgain();
}

TEST_F(SpoiltPasswordFile, LetsNobodyInWhileItIsAnotherUsers) {
  constexpr uid_t kSomebody = 12'345;
  if (geteuid() != 0) {
    GTEST_SKIP() << "root alone gives files away";
  }
  ASSERT_EQ(chown(path().c_str(), kSomebody, 0), 0);
  expectClosed("belongs to the user 12345, who could change it; run: chown 0 " + path());
  ASSERT_EQ(chown(path().c_str(), 0, 0), 0);
  expectOpenAgain();
}

TEST_F(SpoiltPasswordFile, LogsEachFaultOnce) {
  fs::remove(path());
  static_cast<void>(m_users.revision());
  write("anna\n");
  static_cast<void>(m_users.revision());
  static_cast<void>(m_users.revision());
  EXPECT_THAT(records(), ElementsAre(HasSubstr("cannot be read"), HasSubstr("USER:HASH:ROLE")));
}

// Neither the size nor the times of the new content tell it from the old one.
TEST_F(PasswordFileTest, SeesAChangeThatKeepsSizeAndTime) {
  write("anna:" + kSecret + ":operator\nbert:" + kSecret + ":reader\n");
  quorveld::PasswordFileAuthenticator users(path());
  const fs::file_time_type time = fs::last_write_time(path());
  m_directory.write("users", "carl:" + kSecret + ":operator\nbert:" + kSecret + ":reader\n");
  fs::last_write_time(path(), time);
  EXPECT_FALSE(users.check("anna", "secret", kAddress));
  EXPECT_EQ(users.check("carl", "secret", kAddress), wbem::Role::Operator);
}

// What has settled is told by its stamp alone, which the kernel sets.
TEST_F(PasswordFileTest, SeesALateChangeThatKeepsSizeAndTime) {
  write("anna:" + kSecret + ":operator\n");
  constexpr std::int64_t kLongAfter = std::numeric_limits<std::int64_t>::max();
  quorveld::PasswordFileAuthenticator users(path(), [] { return kLongAfter; });
  const fs::file_time_type time = fs::last_write_time(path());
  const auto stamp = platform::findStamp(path());
  ASSERT_TRUE(test::waitUntil([&] {
    m_directory.write("users", "carl:" + kSecret + ":operator\n");
    return platform::findStamp(path())->changed != stamp->changed;
  }));
  fs::last_write_time(path(), time);
  EXPECT_FALSE(users.check("anna", "secret", kAddress));
}

}  // namespace
