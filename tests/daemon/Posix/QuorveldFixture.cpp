#include "tests/daemon/Posix/QuorveldFixture.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <netinet/in.h>
#include <poll.h>
#include <regex>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "tests/support/Posix/Processes.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

// Of "secret".
constexpr const char* kHash =
    "$6$abcdefgh$ltjgWl6579NluT/Vi1nwEvcil.G5Nbc4NiXZaNGStk8PSwGfQv72N2CKPPrVACtLtip/cZ/1GM/"
    "O6IND4WQhG.";

constexpr int kDeadlineMilliseconds =
    static_cast<int>(std::chrono::milliseconds(kDeadline).count());

int demand(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

// Returns what can be read next, within the deadline; empty at the end.
std::string readSome(int descriptor) {
  pollfd source{descriptor, POLLIN, 0};
  if (demand(poll(&source, 1, kDeadlineMilliseconds), "poll") == 0) {
    throw std::system_error(ETIMEDOUT, std::generic_category(), "poll");
  }
  std::array<char, 4096> buffer{};
  const ssize_t got = read(descriptor, buffer.data(), buffer.size());
  // A server that closes a connection with bytes unread in it resets it.
  return got <= 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(got));
}

// Leaves the process to be waited for.
bool hasEnded(pid_t process) {
  siginfo_t information{};
  demand(waitid(P_PID, static_cast<id_t>(process), &information, WEXITED | WNOHANG | WNOWAIT),
         "waitid");
  return information.si_pid != 0;
}

}  // namespace

RunningQuorveld::RunningQuorveld(const std::vector<std::string>& arguments,
                                 const std::vector<EnvironmentChange>& environment) {
  const std::filesystem::path program = programBeside("quorveld");
  const Pipe out;
  m_process = forkProcess();
  if (m_process == 0) {
    dup2(out.in(), STDOUT_FILENO);
    becomeProgram(program, arguments, environment);
  }
  close(out.in());
  m_out = platform::Descriptor(out.out());
  for (std::string text = readSome(m_out.get()); !text.empty(); text = readSome(m_out.get())) {
    m_output += text;
    if (m_output.ends_with("serving\n")) {
      break;
    }
  }
}

RunningQuorveld::~RunningQuorveld() {
  if (m_process != 0) {
    kill(m_process, SIGKILL);
    static_cast<void>(awaitEnd(m_process));
  }
}

std::uint16_t RunningQuorveld::port(const std::string& scheme) const {
  std::smatch match;
  return std::regex_search(m_output, match, std::regex("listening on " + scheme + "://.*:([0-9]+)"))
             ? static_cast<std::uint16_t>(std::stoul(match[1]))
             : std::uint16_t{0};
}

void RunningQuorveld::signal(int number) const {
  demand(kill(m_process, number), "kill");
}

bool RunningQuorveld::isRunning() {
  return m_process != 0 && !hasEnded(m_process);
}

int RunningQuorveld::wait() {
  if (m_process != 0) {
    const pid_t process = m_process;
    // A program that does not end is killed at destruction.
    if (waitUntil([process] { return hasEnded(process); })) {
      m_status = awaitEnd(process);
      m_process = 0;
    } else {
      m_status = -1;
    }
  }
  return m_status;
}

void QuorveldFixture::start(const std::string& settings) {
  launch({"--config", writeSettings(settings), "--listen", "127.0.0.1:0"});
}

void QuorveldFixture::startWithTls(const std::string& settings) {
  const std::string certificate = (m_files.path() / "certificate.pem").string();
  const std::string key = (m_files.path() / "key.pem").string();
  const ProgramResult made =
      runProgram("/usr/bin/openssl",
                 {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                  "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1", "-addext",
                  "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate});
  ASSERT_EQ(made.exitStatus, 0) << made.errors;
  launch({"--config",
          writeSettings("certificate = " + certificate + "\nkey = " + key + "\n" + settings),
          "--listen", "127.0.0.1:0", "--listen", "https:127.0.0.1:0"});
}

std::string QuorveldFixture::writeUsers() const {
  const std::filesystem::path file = m_files.writePrivate(
      "users", "anna:" + std::string(kHash) + ":operator\nbert:" + kHash + ":reader\n");
  return "authentication = file\npassword-file = " + file.string() + "\n";
}

ProgramResult QuorveldFixture::wbemcli(std::vector<std::string> arguments,
                                       const std::string& object,
                                       const std::vector<std::string>& more) const {
  if (m_isTls) {
    arguments.insert(arguments.begin(), {"-cacert", (m_files.path() / "certificate.pem").string()});
  }
  const std::string scheme = m_isTls ? "https" : "http";
  // Without a login, the client takes an @ in a key for the end of one.
  const bool needsLogin = m_login.empty() && object.find('@') != std::string::npos;
  const std::string login = needsLogin ? "nobody:x" : m_login;
  arguments.push_back(scheme + "://" + (login.empty() ? "" : login + "@") +
                      "127.0.0.1:" + std::to_string(m_daemon->port(scheme)) + "/" + kNamespace +
                      (object.empty() ? "" : ":" + object));
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runProgram("/usr/bin/wbemcli", arguments, environment());
}

std::string QuorveldFixture::ask(const std::vector<std::string>& arguments,
                                 const std::string& object,
                                 const std::vector<std::string>& more) const {
  const ProgramResult result = wbemcli(arguments, object, more);
  EXPECT_EQ(result.exitStatus, 0) << testing::PrintToString(arguments) << object;
  EXPECT_EQ(result.errors, "") << testing::PrintToString(arguments) << object;
  return result.output;
}

std::string QuorveldFixture::service() {
  return std::string("Orvex_SoftwareInstallationService.") + kKeys +
         R"(CreationClassName="Orvex_SoftwareInstallationService",Name="Orvex:FirmwareUpdate")";
}

std::string QuorveldFixture::port(const std::string& deviceId) {
  return std::string("Orvex_EthernetPort.") + kKeys +
         R"(CreationClassName="Orvex_EthernetPort",DeviceID=")" + deviceId + "\"";
}

std::string QuorveldFixture::startUpdate(const std::string& rom) const {
  const std::string answer = ask({"cm"}, service(),
                                 {"InstallFromURI.URI=\"" + uriOf(rom) + "\",Target=" + port() +
                                  R"(,InstallOptions=5,32768,InstallOptionsValues="","IMG_PXE")"});
  const std::regex expected(std::string("InstallFromURI: 4096, Job \\(reference\\): ") +
                            kNamespace + ":(Orvex_ConcreteJob\\.InstanceID=\"[^\"]+\")");
  std::smatch match;
  EXPECT_TRUE(std::regex_search(answer, match, expected)) << answer;
  return match[1];
}

std::string QuorveldFixture::propertyOf(const std::string& object, const std::string& name) const {
  const std::string text = ask({"-nl", "gi"}, object);
  std::smatch match;
  return std::regex_search(text, match, std::regex("\n-" + name + "=([^\n]*)")) ? match[1].str()
                                                                                : "";
}

std::string QuorveldFixture::exchange(const std::string& bytes) const {
  const platform::Descriptor socket(
      demand(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(m_daemon->port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  demand(connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)),
         "connect");
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count =
        send(socket.get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0) {
      break;  // refused before it was sent whole: the answer tells
    }
    sent += static_cast<std::size_t>(count);
  }
  std::string answer;
  for (std::string text = readSome(socket.get()); !text.empty(); text = readSome(socket.get())) {
    answer += text;
  }
  return answer;
}

std::string QuorveldFixture::health() const {
  return exchange("GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
}

std::string QuorveldFixture::writeSettings(const std::string& settings) const {
  return m_files.writePrivate("quorveld.conf", settings).string();
}

void QuorveldFixture::launch(const std::vector<std::string>& arguments) {
  m_daemon = std::make_unique<RunningQuorveld>(arguments, environment());
  ASSERT_NE(m_daemon->port(), 0) << m_daemon->output();
}

}  // namespace test
