#include <gmock/gmock.h>
#include <optional>

#include "http/Client.h"
#include "http/ClientTls.h"
#include "tests/http/TestServer.h"

namespace {

using http::Client;
using http::ClientFault;
using http::ClientOptions;
using http::ServerOptions;
using testing::HasSubstr;

class ClientTlsTest : public testing::Test {
 protected:
  ClientTlsTest() { serve(m_files.certificateFile(), m_files.keyFile()); }

  void serve(const std::string& certificateFile, const std::string& keyFile) {
    ServerOptions options = test::onFreePort(true);
    options.certificateFile = certificateFile;
    options.keyFile = keyFile;
    m_server.emplace(options);
  }
  [[nodiscard]] std::string get(const std::string& caFile, const std::string& host) const {
    ClientOptions options;
    options.host = host;
    options.port = m_server->port();
    options.isTls = true;
    options.caFile = caFile;
    return Client(options).send("GET", "/", {}, "").body;
  }
  // Expects a fault that is one of the configuration and says so.
  void expectFault(const std::string& caFile, const std::string& host, const char* reason) const {
    try {
      static_cast<void>(get(caFile, host));
      ADD_FAILURE() << "connected";
    } catch (const ClientFault& fault) {
      EXPECT_THAT(fault.what(), HasSubstr(reason));
      EXPECT_EQ(fault.kind(), ClientFault::Kind::Usage);
    }
  }

  const test::Certificates& m_files = test::sharedCertificates();
  std::optional<test::TestServer> m_server;
};

TEST_F(ClientTlsTest, TrustsAServerByNameAndByAddress) {
  EXPECT_EQ(get(m_files.authorityFile(), "127.0.0.1"), "GET /");
  EXPECT_EQ(get(m_files.authorityFile(), "localhost"), "GET /");
}

TEST_F(ClientTlsTest, DoesNotTrustAnAuthorityThatItWasNotGiven) {
  expectFault(m_files.strangerFile(), "127.0.0.1", "not signed by a trusted authority");
  expectFault("", "127.0.0.1", "not signed by a trusted authority");
}

TEST_F(ClientTlsTest, DoesNotTrustTheCertificateOfAnotherServer) {
  serve(m_files.otherNameFile(), m_files.keyFile());

  expectFault(m_files.authorityFile(), "localhost", "for another name");
  expectFault(m_files.authorityFile(), "127.0.0.1", "not for this address");
}

TEST_F(ClientTlsTest, DoesNotTrustAnExpiredCertificate) {
  serve(m_files.expiredFile(), m_files.keyFile());

  expectFault(m_files.authorityFile(), "localhost", "has expired");
}

TEST_F(ClientTlsTest, NamesAFileOfAuthoritiesThatItCannotRead) {
  const std::string text = m_files.directory().write("none.pem", "no certificate").string();

  expectFault(m_files.file("missing.pem"), "localhost", "No such file");
  expectFault(text, "localhost", "no certificate in PEM");
}

TEST_F(ClientTlsTest, NamesTheServerInItsFaults) {
  try {
    static_cast<void>(get(m_files.strangerFile(), "127.0.0.1"));
    ADD_FAILURE() << "connected";
  } catch (const ClientFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("127.0.0.1:" + std::to_string(m_server->port())));
  }
}

TEST_F(ClientTlsTest, SaysThatAPortDoesNotSpeakTls) {
  m_server.emplace(test::onFreePort());

  expectFault(m_files.authorityFile(), "127.0.0.1", "does not speak TLS on this port");
}

}  // namespace
