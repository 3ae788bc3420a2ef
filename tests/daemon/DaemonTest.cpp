#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "daemon/Daemon.h"
#include "http/Client.h"
#include "tests/Os/Posix/HungMount.h"
#include "tests/daemon/Posix/ErrorsTo.h"
#include "tests/daemon/Posix/HungFile.h"
#include "tests/daemon/Posix/QuorveldFixture.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/Regex.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::ContainsRegex;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class DaemonTest : public test::QuorveldFixture {
 protected:
  // Runs the program to its end.
  [[nodiscard]] test::ProgramResult runDaemon(const Arguments& arguments) const {
    return test::runProgram(test::programBeside("quorveld"), arguments, environment());
  }

  void expectUsage(const Arguments& arguments, const std::string& text) const {
    const test::ProgramResult result = runDaemon(arguments);
    EXPECT_EQ(result.exitStatus, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(result.errors, AllOf(StartsWith("quorveld: "), HasSubstr(text)));
    EXPECT_EQ(result.output, "");
  }

  [[nodiscard]] std::string write(const std::string& name, const std::string& content) const {
    return m_own.writePrivate(name, content).string();
  }

  [[nodiscard]] nlohmann::json healthReport() const {
    const std::string answer = health();
    return nlohmann::json::parse(answer.substr(answer.find("\r\n\r\n")));
  }

  test::TempDirectory m_own;
};

TEST_F(DaemonTest, ServesAndTellsHowItDoes) {
  start();
  EXPECT_THAT(daemon().output(),
              test::MatchesRegex("quorveld: listening on http://127\\.0\\.0\\.1:[0-9]+\n"
                                 "quorveld: serving\n"));
  const std::string answer = health();
  EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"));
  const nlohmann::json report = healthReport();
  EXPECT_THAT(report["version"].get<std::string>(), test::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_GE(report["uptime"].get<int>(), 0);
  EXPECT_EQ(report["runningJobs"], 0);
}

TEST_F(DaemonTest, LimitsTheConnectionsOfEachAddress) {
  start("max-connections-per-address = 1\nrequest-timeout = 2\n");
  // The other one may have the place just when this one comes, or take it before the head is there.
  const auto holdThePlace = [this] {
    return test::waitUntil([this] {
      return exchange(
                 "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/xml\r\n"
                 "CIMOperation: MethodCall\r\nContent-Length: 1000\r\n\r\n<?xml")
          .starts_with("HTTP/1.1 408 ");
    });
  };
  std::future<bool> held = std::async(std::launch::async, holdThePlace);
  EXPECT_TRUE(test::waitUntil([this] {
    return testing::Value(health(), AllOf(StartsWith("HTTP/1.1 503 "),
                                          HasSubstr("from this address as it takes: 1.")));
  }));
  EXPECT_TRUE(held.get());
  EXPECT_TRUE(test::waitUntil([this] { return health().starts_with("HTTP/1.1 200 "); }));
}

TEST_F(DaemonTest, AsksForALoginBeforeTheBody) {
  start(writeUsers());
  const std::string head =
      "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/xml\r\n"
      "CIMOperation: MethodCall\r\nContent-Length: 1000000\r\nExpect: 100-continue\r\n";
  for (const char* const login : {"", "Authorization: Basic YW5uYTp3cm9uZw==\r\n"}) {
    EXPECT_THAT(exchange(head + login + "\r\n"), AllOf(StartsWith("HTTP/1.1 401 Unauthorized\r\n"),
                                                       HasSubstr("\r\nConnection: close\r\n")));
  }
}

// The users of a local socket have one address, and may give any name.
TEST_F(DaemonTest, NamesTheLocalUserWhoseLoginItRefuses) {
  if (std::filesystem::exists("/dev/log")) {
    GTEST_SKIP() << "the records go to the log of this system";
  }
  const std::string socket = (m_own.path() / "a.sock").string();
  const std::string errors = (m_own.path() / "errors").string();
  const std::string config = write("users.conf", writeUsers());
  std::optional<test::RunningQuorveld> running;
  {
    const test::ErrorsTo file(errors);
    running.emplace(
        Arguments{"--config", config, "--listen", "127.0.0.1:0", "--listen", "unix:" + socket},
        environment());
  }
  http::ClientOptions options;
  options.path = socket;
  const std::string wrong = "Basic YW5uYTp3cm9uZw==";  // anna:wrong
  EXPECT_EQ(http::Client(options).send("POST", "/cimom", {{"Authorization", wrong}}, "").status,
            401U);
  EXPECT_TRUE(test::waitUntil([&] {
    return test::readText(errors).find(
               "action=\"Login\" result=\"refused\" target=\"\" "
               "peer=\"user " +
               std::to_string(geteuid()) + "\"") != std::string::npos;
  })) << test::readText(errors);
}

TEST_F(DaemonTest, EndsWithStatus0WhenAsked) {
  for (const int signal : {SIGTERM, SIGINT}) {
    start();
    daemon().signal(signal);
    EXPECT_EQ(daemon().wait(), 0);
  }
}

TEST_F(DaemonTest, GoesOnAfterAHangUp) {
  start();
  daemon().signal(SIGHUP);
  EXPECT_THAT(health(), StartsWith("HTTP/1.1 200 OK\r\n"));
  daemon().signal(SIGTERM);
  EXPECT_EQ(daemon().wait(), 0);
}

TEST_F(DaemonTest, LetsARunningUpdateEndWhenAsked) {
  const std::string rom = addSlowAdapter("0000:03:00");
  const test::Bytes before = flash();
  start();
  static_cast<void>(startUpdate(rom));
  EXPECT_EQ(healthReport()["runningJobs"], 1);
  EXPECT_EQ(flash(), before);

  daemon().signal(SIGTERM);
  daemon().signal(SIGINT);
  daemon().signal(SIGTERM);
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(DaemonTest, AnswersOthersWhileTheFileOfAnUpdateHangs) {
  const std::string directory = (m_own.path() / "hung").string();
  std::filesystem::create_directory(directory);
  const test::HungMount mount(directory);
  if (!mount.isMounted()) {
    GTEST_SKIP() << "this user may mount no file system of a program";
  }
  const std::string rom = addSlowAdapter("0000:03:00");
  start();
  const auto install = [this](const std::string& file) {
    return ask({"cm"}, service(),
               {"InstallFromURI.URI=\"" + uriOf(file) + "\",Target=" + port() +
                R"(,InstallOptions=5,InstallOptionsValues="")"});
  };
  std::future<std::string> hung =
      std::async(std::launch::async, [&] { return install(directory + "/image.rom"); });
  unsigned answers = 0;
  std::chrono::steady_clock::duration longest{};
  while (hung.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(ask({"ein"}, "Orvex_EthernetPort"), HasSubstr("0000:03:00.0"));
    EXPECT_THAT(health(), StartsWith("HTTP/1.1 200 OK\r\n"));
    longest = std::max(longest, std::chrono::steady_clock::now() - begin);
    ++answers;
  }
  // It waits five seconds for the file system, the others for nobody.
  EXPECT_GE(answers, 2u);
  EXPECT_LT(longest, std::chrono::seconds(4));
  EXPECT_THAT(hung.get(), HasSubstr("InstallFromURI: 5"));
  EXPECT_THAT(install(rom), HasSubstr("InstallFromURI: 4096"));
}

TEST_F(DaemonTest, AnswersMonitorsWhileAllClientsWait) {
  const std::string directory = (m_own.path() / "hung").string();
  std::filesystem::create_directory(directory);
  static_cast<void>(addSlowAdapter("0000:03:00"));
  start("config = " + write("agent.conf", "FWFilePath = " + directory + "\n") + "\n");
  const test::HungMount mount(directory);
  if (!mount.isMounted()) {
    GTEST_SKIP() << "this user may mount no file system of a program";
  }
  // They wait for the directory, and nobody for them.
  constexpr unsigned kClients = 12;
  std::vector<std::future<std::string>> clients;
  while (clients.size() < kClients) {
    clients.push_back(
        std::async(std::launch::async, [this] { return ask({"ein"}, "Orvex_SoftwareIdentity"); }));
  }
  const auto begin = std::chrono::steady_clock::now();
  std::chrono::steady_clock::duration longest{};
  while (clients.front().wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_THAT(health(), StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_THAT(ask({"ein"}, "Orvex_EthernetPort"), HasSubstr("0000:03:00.0"));
    longest = std::max(longest, std::chrono::steady_clock::now() - asked);
  }
  EXPECT_GT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
  EXPECT_LT(longest, std::chrono::seconds(3));
}

TEST_F(DaemonTest, AnswersOthersWhileAnUpdateWaitsForTheFirmwareDirectory) {
  const std::string directory = (m_own.path() / "hung").string();
  std::filesystem::create_directory(directory);
  const std::string rom = addSlowAdapter("0000:03:00");
  start("config = " + write("agent.conf", "FWFilePath = " + directory + "\n") + "\n");
  const test::HungMount mount(directory);
  if (!mount.isMounted()) {
    GTEST_SKIP() << "this user may mount no file system of a program";
  }
  // It is the first to ask for the directory, and learns alone that it does not answer.
  std::future<void> installation =
      std::async(std::launch::async, [&] { static_cast<void>(startUpdate(rom)); });
  std::chrono::steady_clock::duration longest{};
  while (installation.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_THAT(ask({"ein"}, "Orvex_EthernetPort"), HasSubstr("0000:03:00.0"));
    longest = std::max(longest, std::chrono::steady_clock::now() - asked);
  }
  EXPECT_LT(longest, std::chrono::seconds(3));
}

// In a directory of firmware files, which an adapter is compared with.
class DaemonWithHungFile : public DaemonTest {
 protected:
  void SetUp() override {
    const std::string directory = (m_own.path() / "hung").string();
    std::filesystem::create_directory(directory);
    addPxeAdapter("0000:03:00");
    start("config = " + write("agent.conf", "FWFilePath = " + directory + "\n") + "\n");
    m_file.emplace(directory, "image.rom", test::readBytes(writeRom("new.rom", {pxe(3)})));
    if (!m_file->isMounted()) {
      GTEST_SKIP() << "this user may mount no file system of a program";
    }
    EXPECT_THAT(ask({"ein"}, "Orvex_SoftwareIdentity"), HasSubstr("image.rom"));
    m_file->hang();
  }

  [[nodiscard]] std::string compare() const { return ask({"ei"}, "Orvex_ElementSoftwareIdentity"); }

  std::optional<test::HungFile> m_file;
};

// The comparison waits for the file until the others have their answers. Were one of them to wait
// for it, the file would come too late: it would be given up first, as unknown.
TEST_F(DaemonWithHungFile, AnswersOthersWhileItIsCompared) {
  std::future<std::string> comparison =
      std::async(std::launch::async, [this] { return compare(); });
  ASSERT_TRUE(test::waitUntil([this] { return m_file->countHung() > 0; }));
  EXPECT_THAT(ask({"ein"}, "Orvex_EthernetPort"), HasSubstr("0000:03:00.0"));
  m_file->resume();
  EXPECT_THAT(comparison.get(), AllOf(HasSubstr("image.rom"), HasSubstr("newer")));
}

TEST_F(DaemonWithHungFile, SaysThatItIsNotKnownHowItCompares) {
  EXPECT_THAT(compare(), AllOf(HasSubstr("image.rom"), HasSubstr("unknown")));
  EXPECT_GE(m_file->countHung(), 1U);
}

TEST_F(DaemonTest, TakesNoNewRequestWhileItWaitsForAnUpdate) {
  const std::string rom = addSlowAdapter("0000:03:00");
  start();
  static_cast<void>(startUpdate(rom));
  daemon().signal(SIGTERM);
  EXPECT_TRUE(
      test::waitUntil([this] { return wbemcli({"ein"}, "Orvex_EthernetPort").output.empty(); }));
  EXPECT_TRUE(daemon().isRunning());
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(DaemonTest, TellsTheServiceManager) {
  const std::string path = (m_own.path() / "notify").string();
  const test::DatagramSocket socket(path);
  std::vector<test::EnvironmentChange> variables = environment();
  variables.push_back({"NOTIFY_SOCKET", path});
  test::RunningQuorveld daemon({"--config", write("empty.conf", ""), "--listen", "127.0.0.1:0"},
                               variables);
  EXPECT_TRUE(test::waitUntil([&] {
    const std::string message = socket.receive();
    return message.starts_with("READY=1\nSTATUS=Serving on http://127.0.0.1:" +
                               std::to_string(daemon.port()));
  }));
  daemon.signal(SIGTERM);
  EXPECT_EQ(daemon.wait(), 0);
  EXPECT_THAT(socket.receive(), StartsWith("STOPPING=1\n"));
}

TEST_F(DaemonTest, TellsTheServiceManagerWhyItDoesNotServe) {
  const std::string path = (m_own.path() / "notify").string();
  const test::DatagramSocket socket(path);
  std::vector<test::EnvironmentChange> variables = environment();
  variables.push_back({"NOTIFY_SOCKET", path});
  const std::string config = write("bad.conf", "speed = 7\n");
  EXPECT_EQ(
      test::runProgram(test::programBeside("quorveld"), {"--config", config}, variables).exitStatus,
      2);
  EXPECT_THAT(socket.receive(), StartsWith("STATUS=" + config + ":1: there is no setting"));
}

TEST_F(DaemonTest, TellsTheServiceManagerThatItLives) {
  const std::string path = (m_own.path() / "notify").string();
  const test::DatagramSocket socket(path);
  std::vector<test::EnvironmentChange> variables = environment();
  variables.push_back({"NOTIFY_SOCKET", path});
  variables.push_back({"WATCHDOG_USEC", "300000"});
  const test::RunningQuorveld daemon(
      {"--config", write("empty.conf", ""), "--listen", "127.0.0.1:0"}, variables);
  for (int sign = 0; sign < 2; ++sign) {
    EXPECT_TRUE(test::waitUntil([&] { return socket.receive() == "WATCHDOG=1\n"; }));
  }
}

// A log file on a full disk, that is: what is written there is lost, and nothing else.
TEST_F(DaemonTest, ServesOnAndUpdatesWhereItsErrorsGoToAFullDisk) {
  addPxeAdapter("0000:03:00", 2);
  {
    const test::ErrorsTo disk("/dev/full");
    start("log-level = 3\n");
  }
  const std::string rom = writeRom("new.rom", {pxe(3)});
  static_cast<void>(startUpdate(rom));
  EXPECT_TRUE(test::waitUntil([this] { return healthReport()["runningJobs"] == 0; }));
  daemon().signal(SIGTERM);
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(DaemonTest, RefusesWrongArguments) {
  expectUsage({"--speed"}, "Try 'quorveld --help'");
  expectUsage({"--config", "/missing/quorveld.conf"},
              "the configuration file '/missing/quorveld.conf' cannot be read");
  expectUsage({"--config", write("bad.conf", "speed = 7\n")}, "bad.conf:1: there is no setting");
}

TEST_F(DaemonTest, RefusesSettingsAndAKeyThatOthersCanRead) {
  const std::string settings = write("settings.conf", "");
  const std::string key = write("key.pem", "no key");
  for (const std::string& file : {settings, key}) {
    std::filesystem::permissions(file, std::filesystem::perms::others_read,
                                 std::filesystem::perm_options::add);
  }
  expectUsage({"--config", settings}, "run: chmod 600 " + settings);
  expectUsage({"--config", write("tls.conf", "certificate = " + key + "\nkey = " + key + "\n")},
              "run: chmod 600 " + key);
}

TEST_F(DaemonTest, RefusesWhatItCannotListenOn) {
  const std::string config = write("empty.conf", "");
  expectUsage({"--config", config, "--listen", "0.0.0.0:0"}, "in the clear");
  start();
  expectUsage({"--config", config, "--listen", "127.0.0.1:" + std::to_string(daemon().port())},
              std::to_string(daemon().port()));
}

TEST_F(DaemonTest, RefusesACertificateThatIsNone) {
  const std::string file = write("certificate.pem", "no certificate");
  expectUsage({"--config", write("tls.conf", "certificate = " + file + "\nkey = " + file + "\n"),
               "--listen", "https:127.0.0.1:0"},
              file);
}

TEST_F(DaemonTest, RefusesAgentSettingsThatAreMissing) {
  expectUsage({"--config", write("agent.conf", "config = /missing/agent.conf\n"), "--listen",
               "127.0.0.1:0"},
              "config: '/missing/agent.conf' cannot be read");
}

TEST_F(DaemonTest, FailsWithoutItsModules) {
  const test::ProgramResult result = runDaemon({"--config", write("empty.conf", ""), "--listen",
                                                "127.0.0.1:0", "--module", "/missing/Module.so"});
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors, HasSubstr("/missing/Module.so"));
}

TEST_F(DaemonTest, TakesTheSettingsOfTheAgentsFromTheirFile) {
  start("config = " + write("agent.conf", "Namespace = root/lab\n") + "\n");
  const test::ProgramResult result = wbemcli({"ein"}, "Orvex_EthernetPort");
  EXPECT_THAT(result.errors + result.output,
              HasSubstr("there is no namespace 'root/DCIM/zolan'; there are root/lab"));
}

}  // namespace
