#include <chrono>
#include <gmock/gmock.h>
#include <string>
#include <syslog.h>

#include "daemon/Posix/LibraryLog.h"
#include "daemon/Posix/PamAuthenticator.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class LibraryLog : public testing::Test {
 protected:
  LibraryLog() { quorveld::exchangeLibraryLog(&m_sink); }
  ~LibraryLog() override { quorveld::exchangeLibraryLog(nullptr); }

  // Fails, and has a module write a record of it.
  void logInByPam() const {
    for (const char* const service : {"warner", "other"}) {
      m_directory.write(service,
                        std::string("auth required pam_warn.so\nauth required pam_deny.so\n"));
    }
    EXPECT_FALSE(
        quorveld::verifyByPam("warner", "anna", "wrong", "192.0.2.7", m_directory.path().c_str()));
  }

  const test::TempDirectory m_directory;
  const std::string m_path = (m_directory.path() / "log").string();
  const test::DatagramSocket m_log{m_path};
  os::SystemLogSink m_sink{m_path, "tester"};
};

TEST_F(LibraryLog, IsWhatTheLibrariesOfTheProgramFind) {
  EXPECT_TRUE(quorveld::isLibraryLogInForce());
}

TEST_F(LibraryLog, WritesUnderTheFacilityOfTheCaller) {
  syslog(LOG_AUTHPRIV | LOG_NOTICE, "%s %d", "one", 2);
  EXPECT_THAT(m_log.receive(), AllOf(StartsWith("<85>"), EndsWith(" tester: one 2")));
  syslog(LOG_WARNING, "plain");
  EXPECT_THAT(m_log.receive(), AllOf(StartsWith("<12>"), EndsWith(" tester: plain")));
}

TEST_F(LibraryLog, TakesWhatModulesOfPamWrite) {
  logInByPam();
  EXPECT_THAT(m_log.receive(),
              AllOf(StartsWith("<85>"), HasSubstr("pam_warn(warner:auth)"), HasSubstr("anna")));
}

// A module that waited for the log would hold up the logins behind it for ever.
TEST_F(LibraryLog, LetsNoLoginWaitForALogThatDoesNotRead) {
  for (int i = 0; i < 1000; ++i) {
    syslog(LOG_WARNING, "filling");
  }
  const auto start = std::chrono::steady_clock::now();
  logInByPam();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
