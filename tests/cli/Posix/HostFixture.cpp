#include "tests/cli/Posix/HostFixture.h"

#include <crypt.h>
#include <fstream>
#include <unistd.h>

namespace test {
namespace {

std::string hashOf(const std::string& password) {
  crypt_data data{};
  return crypt_r(password.c_str(), "$6$saltsalt$", &data);
}

void writeSecret(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file) << text;
  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
}

}  // namespace

void HostFixture::startHost(const std::string& settings, const std::string& scheme) {
  const std::filesystem::path file = path("quorveld.conf");
  writeSecret(file, settings);
  m_scheme = scheme;
  const std::string listen = (scheme == "https" ? "https:" : "") + std::string("127.0.0.1:0");
  m_host =
      std::make_unique<RunningQuorvel>(Arguments{"--config", file.string(), "--listen", listen},
                                       OutputTo::Pipe, environment(), "quorveld");
  const std::string mark = "listening on " + scheme + "://";
  const bool isListening = m_host->awaitOutput(mark);
  const std::string& output = m_host->output();
  ASSERT_TRUE(isListening) << output << m_host->finish().errors;
  ASSERT_TRUE(m_host->awaitOutput("\n"));
  const std::size_t begin = output.find(mark) + mark.size();
  m_place = output.substr(begin, output.find('\n', begin) - begin);
}

void HostFixture::startHostWithUsers(const std::string& settings, const std::string& scheme) {
  const std::filesystem::path users = path("users");
  const std::string hash = hashOf("secret");
  writeSecret(users, "admin:" + hash + ":operator\nreader:" + hash + ":reader\n");
  startHost("authentication = file\npassword-file = " + users.string() + "\n" + settings, scheme);
}

std::string HostFixture::makeCertificate() {
  const std::string certificate = path("certificate.pem").string();
  const std::string key = path("key.pem").string();
  const ProgramResult made = runProgram(
      "/usr/bin/openssl",
      {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1",
       "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate});
  EXPECT_EQ(made.exitStatus, 0) << made.errors;
  return "certificate = " + certificate + "\nkey = " + key + "\n";
}

std::string HostFixture::address(const std::string& user) const {
  return m_scheme + "://" + (user.empty() ? "" : user + "@") + m_place;
}

QuorvelFixture::Arguments HostFixture::onHost(const Arguments& arguments,
                                              const std::string& user) const {
  Arguments all{"--host", address(user)};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return all;
}

void HostFixture::expectSame(const Arguments& arguments, int exitStatus) const {
  const ProgramResult here = run(arguments);
  const ProgramResult there = run(onHost(arguments));
  EXPECT_EQ(here.exitStatus, exitStatus) << testing::PrintToString(arguments);
  EXPECT_EQ(there.exitStatus, exitStatus) << testing::PrintToString(arguments) << there.errors;
  EXPECT_EQ(there.output, here.output) << testing::PrintToString(arguments);
  // Advice names the host that it is about.
  const std::string command = "quorvel --host " + address() + " ";
  std::string errors = there.errors;
  for (std::size_t place = errors.find(command); place != std::string::npos;
       place = errors.find(command)) {
    errors.replace(place, command.size(), "quorvel ");
  }
  EXPECT_EQ(errors, here.errors) << testing::PrintToString(arguments);
}

std::string HostFixture::passwordFile(const std::string& password) const {
  const std::filesystem::path file = path("password");
  writeSecret(file, password + "\n");
  return file.string();
}

}  // namespace test
