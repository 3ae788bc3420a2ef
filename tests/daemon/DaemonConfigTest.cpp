#include <filesystem>
#include <gmock/gmock.h>
#include <regex>
#include <string>

#include "daemon/DaemonConfig.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

using quorveld::ConfigurationFault;
using quorveld::DaemonConfig;
using test::ThrowsExactly;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string textOf(const http::Endpoint& endpoint) {
  return (endpoint.isTls ? "https:" : "") + endpoint.text();
}

std::vector<std::string> listenOf(const DaemonConfig& config) {
  std::vector<std::string> texts;
  for (const http::Endpoint& endpoint : config.listen) {
    texts.push_back(textOf(endpoint));
  }
  return texts;
}

class DaemonConfigTest : public testing::Test {
 protected:
  [[nodiscard]] std::string write(const std::string& content) const {
    return m_directory.writePrivate("quorveld.conf", content).string();
  }

  // Reads the settings and completes them.
  [[nodiscard]] DaemonConfig complete(const std::string& content) const {
    DaemonConfig config = quorveld::readDaemonConfig(write(content));
    quorveld::completeConfig(config, m_privileges);
    return config;
  }

  // Expects the line to be refused with a text behind its place.
  void expectRefused(const std::string& line, const std::string& text) const {
    const std::string path = write("# settings\n" + line + "\n");
    EXPECT_THAT(
        [&path] { static_cast<void>(quorveld::readDaemonConfig(path)); },
        ThrowsExactly<ConfigurationFault>(AllOf(StartsWith(path + ":2: "), HasSubstr(text))))
        << line;
  }

  void expectUnsafe(const std::string& content, const std::string& text) const {
    EXPECT_THAT([&] { static_cast<void>(complete(content)); },
                ThrowsExactly<ConfigurationFault>(HasSubstr(text)))
        << content;
  }

  test::TempDirectory m_directory;
  quorveld::Privileges m_privileges;
};

TEST_F(DaemonConfigTest, ReadsEverySetting) {
  const DaemonConfig config =
      quorveld::readDaemonConfig(write("# all of them\n"
                                       "\n"
                                       "listen = 127.0.0.1:15988\n"
                                       "listen=https:[::]:5989\n"
                                       "  certificate =  /etc/quorveld/cert.pem  \r\n"
                                       "key = /etc/quorveld/key.pem\n"
                                       "authentication = file\n"
                                       "password-file = /etc/quorveld/users\n"
                                       "operators = anna @wheel\n"
                                       "readers = bert\n"
                                       "adapters = /srv/adapters\n"
                                       "config = /etc/agent.conf\n"
                                       "module = /lib/a.so\n"
                                       "module = /lib/b.so\n"
                                       "log-level = 2\n"
                                       "max-connections = 7\n"
                                       "max-connections-per-address = 3\n"
                                       "max-body = 65536\n"
                                       "max-answers = 2097152\n"
                                       "request-timeout = 5\n"
                                       "idle-timeout = 6"));
  EXPECT_THAT(listenOf(config), ElementsAre("127.0.0.1:15988", "https:[::]:5989"));
  EXPECT_EQ(config.certificate, "/etc/quorveld/cert.pem");
  EXPECT_EQ(config.key, "/etc/quorveld/key.pem");
  EXPECT_EQ(config.authentication, quorveld::AuthenticationKind::File);
  EXPECT_EQ(config.passwordFile, "/etc/quorveld/users");
  EXPECT_THAT(config.operators, ElementsAre("anna", "@wheel"));
  EXPECT_THAT(config.readers, ElementsAre("bert"));
  EXPECT_EQ(config.adapters, "/srv/adapters");
  EXPECT_EQ(config.agentConfig, "/etc/agent.conf");
  EXPECT_THAT(config.modules, ElementsAre("/lib/a.so", "/lib/b.so"));
  EXPECT_EQ(config.logLevel, "2");
  EXPECT_EQ(config.maxConnections, 7u);
  EXPECT_EQ(config.maxConnectionsPerAddress, 3u);
  EXPECT_EQ(config.maxBodyBytes, 65536u);
  EXPECT_EQ(config.maxAnswerBytes, 2097152u);
  EXPECT_EQ(config.requestTimeout, std::chrono::seconds(5));
  EXPECT_EQ(config.idleTimeout, std::chrono::seconds(6));
}

TEST_F(DaemonConfigTest, ReadsTheSampleFileWhoseNumbersAreTheDefaults) {
  const std::string sample = test::readText(QUORVEL_TEST_SAMPLE_SETTINGS);
  // As it stands, it sets nothing; with its settings in force, it is sound line by line.
  EXPECT_THAT(quorveld::readDaemonConfig(write(sample)).listen, IsEmpty());
  const DaemonConfig config = quorveld::readDaemonConfig(
      write(std::regex_replace(sample, std::regex("\n#([a-z-]+ = )"), "\n$1")));
  EXPECT_THAT(listenOf(config), ElementsAre("127.0.0.1:5988", "unix:/run/orvex/quorveld.sock",
                                            "https:0.0.0.0:5989", "https:[::]:5989"));
  EXPECT_EQ(config.authentication, quorveld::AuthenticationKind::Local);
  EXPECT_THAT(config.operators, ElementsAre("root", "@wheel"));
  EXPECT_EQ(config.adapters, "/var/lib/orvex/adapters");
  EXPECT_EQ(config.logLevel, "1");
  const DaemonConfig defaults;
  EXPECT_EQ(config.maxConnections, defaults.maxConnections);
  EXPECT_EQ(config.maxConnectionsPerAddress, defaults.maxConnectionsPerAddress);
  EXPECT_EQ(config.maxBodyBytes, defaults.maxBodyBytes);
  EXPECT_EQ(config.maxAnswerBytes, defaults.maxAnswerBytes);
  EXPECT_EQ(config.requestTimeout, defaults.requestTimeout);
  EXPECT_EQ(config.idleTimeout, defaults.idleTimeout);
}

TEST_F(DaemonConfigTest, RefusesWhatCannotBeUsedAndSaysWhereAndWhatToDo) {
  expectRefused("speed = 7", "there is no setting 'speed'; the settings are listen, certificate");
  expectRefused("Listen = 127.0.0.1:1", "there is no setting 'Listen'");
  expectRefused("listen", "'listen' is no setting; write NAME = VALUE");
  expectRefused("listen =", "listen: there is no value");
  expectRefused("listen = localhost:5988", "listen: 'localhost:5988' is no address to listen on");
  expectRefused("key = key.pem", "key: 'key.pem' is no absolute path");
  expectRefused("authentication = ldap", "authentication: 'ldap' is no way to log in");
  expectRefused("operators = @ wheel", "operators: '@' names no group");
  expectRefused("log-level = 4", "log-level: '4' is no whole number from 0 to 3");
  expectRefused("max-connections = 0", "max-connections: '0' is no whole number from 1 to 65536");
  expectRefused("max-connections-per-address = many",
                "max-connections-per-address: 'many' is no whole number from 1 to 65536");
  expectRefused("max-body = 1M", "max-body: '1M' is no whole number from 1024 to 1073741824");
  expectRefused("max-answers = 65536",
                "max-answers: '65536' is no whole number from 1048576 to 4294967295");
  expectRefused("request-timeout = -1", "request-timeout: '-1' is no whole number");
  expectRefused("idle-timeout = 86401", "idle-timeout: '86401' is no whole number from 1 to 86400");
}

TEST_F(DaemonConfigTest, ReadsAFileOfAMegabyteAndNothingLarger) {
  const std::string content(1024UL * 1024, '\n');
  EXPECT_NO_THROW(static_cast<void>(quorveld::readDaemonConfig(write(content))));
  const std::string path = write(content + '\n');
  EXPECT_THAT([&path] { static_cast<void>(quorveld::readDaemonConfig(path)); },
              ThrowsExactly<ConfigurationFault>(HasSubstr("is longer than 1048576 bytes")));
}

TEST_F(DaemonConfigTest, RefusesASettingThatIsMadeTwice) {
  const std::pair<std::string, std::string> settings[] = {{"certificate", "/c.pem"},
                                                          {"key", "/k.pem"},
                                                          {"authentication", "none"},
                                                          {"password-file", "/passwords"},
                                                          {"operators", "anna"},
                                                          {"readers", "anna"},
                                                          {"adapters", "/adapters"},
                                                          {"config", "/config"},
                                                          {"log-level", "1"},
                                                          {"max-connections", "10"},
                                                          {"max-connections-per-address", "10"},
                                                          {"max-body", "1024"},
                                                          {"max-answers", "1048576"},
                                                          {"request-timeout", "10"},
                                                          {"idle-timeout", "10"}};
  for (const auto& [name, value] : settings) {
    const std::string line = name + " = " + value + "\n";
    const std::string path = write(line + line);
    EXPECT_THAT(
        [&path] { static_cast<void>(quorveld::readDaemonConfig(path)); },
        ThrowsExactly<ConfigurationFault>(StartsWith(path + ":2: " + name + ": is set a second")));
  }
}

TEST_F(DaemonConfigTest, DemandsAFileThatWasNamed) {
  const std::string missing = (m_directory.path() / "missing.conf").string();
  for (const std::string& path : {missing, m_directory.path().string()}) {
    EXPECT_THAT([&path] { static_cast<void>(quorveld::readDaemonConfig(path)); },
                ThrowsExactly<ConfigurationFault>("the configuration file '" + path +
                                                  "' cannot be read; check the path and its "
                                                  "permissions"));
  }
}

TEST_F(DaemonConfigTest, TakesTheDefaultsWhereTheDefaultFileIsMissing) {
  DaemonConfig config =
      quorveld::readDefaultDaemonConfig((m_directory.path() / "missing.conf").string());
  quorveld::completeConfig(config, m_privileges);
  EXPECT_THAT(listenOf(config), ElementsAre("127.0.0.1:5988"));
  EXPECT_EQ(config.authentication, quorveld::AuthenticationKind::Local);
  EXPECT_EQ(config.maxConnections, 128u);
  EXPECT_EQ(config.maxBodyBytes, 1024u * 1024u);
  EXPECT_THAT(config.modules, IsEmpty());
}

TEST_F(DaemonConfigTest, ReadsADefaultFileThatIsThere) {
  EXPECT_EQ(quorveld::readDefaultDaemonConfig(write("log-level = 3\n")).logLevel, "3");
}

TEST_F(DaemonConfigTest, ListensOnHttpsBesideHttpWithACertificate) {
  EXPECT_THAT(listenOf(complete("certificate = /c.pem\nkey = /k.pem\n")),
              ElementsAre("127.0.0.1:5988", "https:127.0.0.1:5989"));
}

TEST_F(DaemonConfigTest, DemandsCertificateAndKeyTogether) {
  expectUnsafe("certificate = /c.pem\n", "certificate '/c.pem' is set without a key");
  expectUnsafe("key = /k.pem\n", "key '/k.pem' is set without a certificate");
  expectUnsafe("listen = https:127.0.0.1:5989\n",
               "listen: https:127.0.0.1:5989 needs a certificate");
}

TEST_F(DaemonConfigTest, TakesNoPlainHttpOnANetwork) {
  for (const char* const address : {"0.0.0.0", "192.0.2.7", "[::]", "[2001:db8::1]"}) {
    const std::string listen = std::string(address) + ":5988";
    expectUnsafe("listen = " + listen + "\nauthentication = pam\noperators = root\n",
                 "listen: " + listen + " would send passwords over the network in the clear");
  }
}

TEST_F(DaemonConfigTest, DemandsALoginOnANetwork) {
  const std::string listen = "listen = https:0.0.0.0:5989\ncertificate = /c.pem\nkey = /k.pem\n";
  expectUnsafe(listen, "authentication is not set, and the host would listen on a network");
  expectUnsafe(listen + "authentication = none\n",
               "authentication = none would let everybody on the network replace firmware");
  EXPECT_EQ(complete(listen + "authentication = pam\nreaders = @staff\n").authentication,
            quorveld::AuthenticationKind::Pam);
}

TEST_F(DaemonConfigTest, DemandsWhatAWayToLogInNeedsAndNothingElse) {
  expectUnsafe("authentication = pam\n", "authentication = pam lets nobody in");
  expectUnsafe("authentication = file\n", "authentication = file needs a password-file");
  expectUnsafe("password-file = /users\n", "password-file is set, but nobody logs in by it");
  expectUnsafe("authentication = none\noperators = anna\n",
               "operators is set, but nobody logs in by it");
  expectUnsafe("authentication = file\npassword-file = /users\nreaders = anna\n",
               "readers is set, but nobody logs in by it; set authentication = pam");
}

// Somebody else could have the host listen to him, or lead it to users of his.
TEST_F(DaemonConfigTest, DemandsThatTheSettingsAreTheOwnersAlone) {
  const std::string path = write("listen = 127.0.0.1:1\n");
  for (const fs::perms others : {fs::perms::others_read, fs::perms::group_write}) {
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | others);
    EXPECT_THAT([&] { static_cast<void>(quorveld::readDaemonConfig(path)); },
                ThrowsExactly<ConfigurationFault>(
                    "the configuration file '" + path +
                    "' can be read or changed by others than its owner; run: chmod 600 " + path));
  }
}

// The command line of every user reads them.
TEST_F(DaemonConfigTest, DemandsAgentSettingsThatNobodyElseCanChange) {
  DaemonConfig config;
  config.agentConfig = m_directory.writePrivate("agents.conf", "\n").string();
  fs::permissions(config.agentConfig, fs::perms::others_read, fs::perm_options::add);
  EXPECT_NO_THROW(quorveld::demandPrivateAgentSettings(config));
  fs::permissions(config.agentConfig, fs::perms::others_write, fs::perm_options::add);
  EXPECT_THAT(
      [&] { quorveld::demandPrivateAgentSettings(config); },
      ThrowsExactly<ConfigurationFault>(
          "config: '" + config.agentConfig +
          "' can be changed by others than its owner; run: chmod go-w " + config.agentConfig));
}

// Who uses them says what is wrong with them.
TEST_F(DaemonConfigTest, LeavesFilesThatAreNotThereToTheirUsers) {
  DaemonConfig config;
  config.agentConfig = "/missing/agents.conf";
  EXPECT_NO_THROW(quorveld::demandPrivateAgentSettings(config));
}

TEST_F(DaemonConfigTest, LetsOperatorsBeNamedForLocalUsers) {
  const DaemonConfig config = complete("operators = @wheel\n");
  EXPECT_EQ(config.authentication, quorveld::AuthenticationKind::Local);
  EXPECT_THAT(config.operators, ElementsAre("@wheel"));
}

TEST_F(DaemonConfigTest, KnowsLocalUsersOnThisMachineAlone) {
  expectUnsafe(
      "listen = https:0.0.0.0:5989\ncertificate = /c.pem\nkey = /k.pem\nauthentication = local\n",
      "authentication = local knows the users of this machine alone; set pam or file");
}

TEST_F(DaemonConfigTest, LetsNobodyFlashAsRootUnasked) {
  EXPECT_EQ(complete("authentication = none\n").authentication, quorveld::AuthenticationKind::None);
  m_privileges.isRoot = true;
  expectUnsafe("authentication = none\n",
               "authentication = none would let every user and program of this machine replace "
               "firmware as root; set local");
}

TEST_F(DaemonConfigTest, ListensOnTheLocalSocketForLocalUsers) {
  m_privileges.mayUseDefaultSocket = true;
  EXPECT_THAT(listenOf(complete("")),
              ElementsAre("127.0.0.1:5988", "unix:/run/orvex/quorveld.sock"));
  EXPECT_THAT(listenOf(complete("authentication = file\npassword-file = /users\n")),
              ElementsAre("127.0.0.1:5988"));
  EXPECT_THAT(listenOf(complete("listen = unix:/tmp/a.sock\n")), ElementsAre("unix:/tmp/a.sock"));
}

}  // namespace
