#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <grp.h>
#include <pwd.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "daemon/Posix/PamAuthenticator.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"

namespace {

const std::string kAddress = "192.0.2.7";

bool passesSecret(const std::string& /*user*/, const std::string& password,
                  const std::string& /*address*/) {
  return password == "secret";
}

TEST(PamAuthenticator, GivesRolesByItsLists) {
  quorveld::PamAuthenticator users({{"anna"}, {"anna", "bert"}}, passesSecret);
  EXPECT_TRUE(users.demandsLogin());
  EXPECT_EQ(users.check("anna", "secret", kAddress), wbem::Role::Operator);
  EXPECT_EQ(users.check("bert", "secret", kAddress), wbem::Role::Reader);
  EXPECT_FALSE(users.check("carl", "secret", kAddress));
  EXPECT_FALSE(users.check("anna", "wrong", kAddress));
}

TEST(PamAuthenticator, AsksForUsersWithoutARoleToo) {
  std::string asked;
  std::string askedFrom;
  quorveld::PamAuthenticator users(
      {{"anna"}, {}}, [&](const std::string& user, const std::string&, const std::string& address) {
        asked = user;
        askedFrom = address;
        return true;
      });
  EXPECT_FALSE(users.check("carl", "secret", kAddress));
  EXPECT_EQ(asked, "carl");
  EXPECT_EQ(askedFrom, kAddress);
}

// A service whose users are anna with the password "secret", dora with the same from one address,
// and bert, whose account has ended.
class VerifyByPam : public testing::Test {
 protected:
  VerifyByPam() {
    const std::string secret = script("secret", "[ \"$(/usr/bin/tr -d '\\0')\" = secret ]");
    const std::string account = script(
        "account", "[ \"$PAM_USER\" = anna ] || [ \"$PAM_USER@$PAM_RHOST\" = dora@192.0.2.7 ]");
    m_authRule = "auth required pam_exec.so quiet expose_authtok " + secret + "\n";
    m_accountRule = "account required pam_exec.so quiet " + account + "\n";
    m_directory.write(
        "quorveld", "auth optional pam_faildelay.so delay=3000000\n" + m_authRule + m_accountRule);
  }

  // PAM looks for included files in the system's directory, unless their names are whole paths.
  void useTheServiceOfThePackage() const {
    const std::string_view name = "common-";
    std::ifstream file(QUORVEL_TEST_PAM_SERVICE);
    std::string service;
    for (std::string line; std::getline(file, line); service += line + "\n") {
      const std::size_t place = line.find(name);
      if (!line.starts_with('#') && place != std::string::npos) {
        line.insert(place, m_directory.path().string() + "/");
      }
    }
    m_directory.write("quorveld", service);
    m_directory.write("common-auth", m_authRule);
    m_directory.write("common-account", m_accountRule);
  }

  [[nodiscard]] bool verify(const std::string& user, const std::string& password,
                            const char* service = "quorveld") const {
    return quorveld::verifyByPam(service, user, password, m_address, m_directory.path().c_str());
  }

 protected:
  std::string m_address = kAddress;

 private:
  [[nodiscard]] std::string script(const std::string& name, const std::string& condition) const {
    const std::filesystem::path file = m_directory.write(name, "#!/bin/sh\n" + condition + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    return file.string();
  }

  test::TempDirectory m_directory;
  std::string m_authRule;
  std::string m_accountRule;
};

TEST_F(VerifyByPam, PassesTheRightPasswordOfASoundAccount) {
  EXPECT_TRUE(verify("anna", "secret"));
  EXPECT_FALSE(verify("anna", "wrong"));
  EXPECT_FALSE(verify("anna", ""));
  EXPECT_FALSE(verify("bert", "secret"));
}

TEST_F(VerifyByPam, TellsPamWhereTheLoginComesFrom) {
  EXPECT_TRUE(verify("dora", "secret"));
  m_address = "192.0.2.8";
  EXPECT_FALSE(verify("dora", "secret"));
}

TEST_F(VerifyByPam, LosesNoTimeOverAFailure) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(verify("anna", "wrong"));
  // The service asks for three seconds.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
}

TEST_F(VerifyByPam, RefusesWithoutAService) {
  const test::LogCapture log;
  EXPECT_FALSE(verify("anna", "secret", "missing"));
}

// The file that the package has, in a system with the users of VerifyByPam.
TEST_F(VerifyByPam, TakesTheUsersOfTheSystemByTheServiceOfThePackage) {
  useTheServiceOfThePackage();
  EXPECT_TRUE(verify("anna", "secret"));
  EXPECT_FALSE(verify("anna", "wrong"));
  EXPECT_FALSE(verify("bert", "secret"));
}

}  // namespace
