#include <gmock/gmock.h>

#include "http/ServerOptions.h"
#include "http/ServerTls.h"
#include "tests/http/Certificates.h"
#include "tests/support/Throws.h"

namespace {

using http::makeServerTls;
using http::SetupFault;
using testing::AllOf;
using testing::HasSubstr;

class ServerTlsTest : public testing::Test {
 protected:
  static void make(const std::string& certificateFile, const std::string& keyFile) {
    static_cast<void>(makeServerTls(certificateFile, keyFile));
  }
  // Expects a fault that names a file and a reason.
  template <class Make>
  static void expectFault(const Make& make, const std::string& file, const char* reason) {
    EXPECT_THAT(make, test::ThrowsExactly<SetupFault>(
                          AllOf(HasSubstr("'" + file + "'"), HasSubstr(reason))));
  }

  const test::Certificates& m_files = test::sharedCertificates();
  const std::string m_certificate = m_files.certificateFile();
  const std::string m_key = m_files.keyFile();
};

TEST_F(ServerTlsTest, TakesACertificateAndItsKey) {
  EXPECT_NO_THROW(make(m_certificate, m_key));
}

TEST_F(ServerTlsTest, TakesNeitherOldVersionsNorRenegotiation) {
  boost::asio::ssl::context context = makeServerTls(m_certificate, m_key);
  SSL_CTX* const tls = context.native_handle();

  EXPECT_EQ(SSL_CTX_get_min_proto_version(tls), TLS1_2_VERSION);
  EXPECT_NE(SSL_CTX_get_options(tls) & SSL_OP_NO_RENEGOTIATION, 0U);
  EXPECT_NE(SSL_CTX_get_options(tls) & SSL_OP_NO_COMPRESSION, 0U);
}

TEST_F(ServerTlsTest, NamesAMissingFile) {
  const std::string missing = m_files.file("missing.pem");

  expectFault([&] { make(missing, m_key); }, missing, "No such file");
  expectFault([&] { make(m_certificate, missing); }, missing, "No such file");
}

TEST_F(ServerTlsTest, SaysThatNoFileIsConfigured) {
  EXPECT_THAT([&] { make("", m_key); },
              test::ThrowsExactly<SetupFault>(HasSubstr("certificate, and none is configured")));
  EXPECT_THAT([&] { make(m_certificate, ""); },
              test::ThrowsExactly<SetupFault>(HasSubstr("key, and none is configured")));
}

TEST_F(ServerTlsTest, NamesAFileThatIsNoPem) {
  const std::string text = m_files.directory().write("text.pem", "no certificate").string();
  const std::string empty = m_files.directory().write("empty.pem", "").string();

  expectFault([&] { make(text, m_key); }, text, "PEM");
  expectFault([&] { make(m_certificate, text); }, text, "PEM");
  expectFault([&] { make(empty, m_key); }, empty, "empty");
}

TEST_F(ServerTlsTest, NamesADirectory) {
  const std::string folder = m_files.directory().path().string();

  expectFault([&] { make(folder, m_key); }, folder, "directory");
}

TEST_F(ServerTlsTest, NamesTheKeyOfAnotherCertificate) {
  expectFault([&] { make(m_certificate, m_files.strangerKeyFile()); }, m_files.strangerKeyFile(),
              "is not the key of the certificate");
}

TEST_F(ServerTlsTest, DoesNotAskForThePassphraseOfAKey) {
  expectFault([&] { make(m_certificate, m_files.encryptedKeyFile()); }, m_files.encryptedKeyFile(),
              "encrypted");
}

}  // namespace
