#include <gmock/gmock.h>
#include <thread>

#include "cli/OpenHost.h"
#include "client/Fault.h"
#include "http/Server.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Variables.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// Notes who logs in and answers with no CIM message.
class Doorman : public http::Handler {
 public:
  void handle(http::Request& request, http::Response& response) override {
    logins.emplace_back(request.field("Authorization"));
    targets.emplace_back(request.target());
    response.status = 401;
  }

  std::vector<std::string> logins;
  std::vector<std::string> targets;
};

http::ServerOptions onLoopback() {
  http::ServerOptions options;
  options.endpoints = {{"127.0.0.1", 0, false}};
  return options;
}

class OpenHostTest : public testing::Test {
 protected:
  ~OpenHostTest() override {
    m_server.stop();
    m_thread.join();
    test::unsetVariable("QUORVEL_PASSWORD");
  }

  // Opens the host and asks it for something; returns how that is refused.
  std::string refusalOf(const cli::GlobalOptions& options, client::Fault::Kind kind) {
    try {
      static_cast<void>(cli::openHost(options)->getClasses());
    } catch (const client::Fault& fault) {
      EXPECT_EQ(fault.kind(), kind);
      return fault.what();
    }
    return "";
  }

  std::string usageFaultOf(const cli::GlobalOptions& options) {
    return refusalOf(options, client::Fault::Kind::Usage);
  }

  [[nodiscard]] cli::GlobalOptions optionsFor(const std::string& host) const {
    cli::GlobalOptions options;
    options.host = host;
    return options;
  }
  [[nodiscard]] std::string place() const { return m_server.endpoints().at(0).text(); }

  test::TempDirectory m_directory;
  Doorman m_doorman;

 private:
  http::Server m_server{onLoopback(), m_doorman};
  std::thread m_thread{[this] { m_server.run(); }};
};

TEST_F(OpenHostTest, LogsInWithThePasswordOfTheFile) {
  cli::GlobalOptions options = optionsFor("http://test@" + place());
  options.passwordFile = m_directory.writePrivate("password", "123\xc2\xa3\n").string();
  test::setVariable("QUORVEL_PASSWORD", "another");
  EXPECT_THAT(refusalOf(options, client::Fault::Kind::Refused),
              HasSubstr("refused the login of test"));
  EXPECT_THAT(m_doorman.logins, testing::ElementsAre("Basic dGVzdDoxMjPCow=="));
  EXPECT_THAT(m_doorman.targets, testing::ElementsAre("/cimom"));
}

TEST_F(OpenHostTest, LogsInWithThePasswordOfTheEnvironment) {
  test::setVariable("QUORVEL_PASSWORD", "b");
  EXPECT_NE(refusalOf(optionsFor("http://a@" + place()), client::Fault::Kind::Refused), "");
  EXPECT_THAT(m_doorman.logins, testing::ElementsAre("Basic YTpi"));
}

TEST_F(OpenHostTest, NeedsNoPasswordWithoutAUser) {
  EXPECT_THAT(refusalOf(optionsFor("http://" + place()), client::Fault::Kind::Refused),
              HasSubstr("wants a login"));
  EXPECT_THAT(m_doorman.logins, testing::ElementsAre(""));
}

TEST_F(OpenHostTest, LetsNoPasswordOverTheNetworkReadable) {
  test::setVariable("QUORVEL_PASSWORD", "b");
  EXPECT_THAT(usageFaultOf(optionsFor("http://admin@192.0.2.1:5988")),
              AllOf(HasSubstr("anybody on the network could read the password of admin"),
                    HasSubstr("use https")));
}

TEST_F(OpenHostTest, RefusesCertificatesThatCannotBeRead) {
  cli::GlobalOptions options = optionsFor("https://127.0.0.1:5989");
  options.caFile = "/nowhere/ca.pem";
  EXPECT_THAT(usageFaultOf(options), StartsWith("--cacert: '/nowhere/ca.pem' cannot be read"));
  options.caFile = m_directory.write("ca.pem", std::string("no certificate\n")).string();
  EXPECT_THAT(refusalOf(options, client::Fault::Kind::Refused), HasSubstr(options.caFile));
}

TEST_F(OpenHostTest, TellsTheCommandThatWatchesAJob) {
  cli::GlobalOptions options = optionsFor("http://a%20b@127.0.0.1");
  options.passwordFile = m_directory.writePrivate("pass word", "x\n").string();
  options.nameSpace = "root/x";
  EXPECT_EQ(cli::openHost(options)->watchCommand("Job#1"),
            "quorvel --host http://a%20b@127.0.0.1 --password-file '" + options.passwordFile +
                "' --namespace root/x watch 'Job#1'");
}

}  // namespace
