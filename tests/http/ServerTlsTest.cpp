#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "http/ServerOptions.h"
#include "http/ServerTls.h"
#include "tests/http/Certificates.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

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
  const std::string text = m_files.directory().writePrivate("text.pem", "no certificate").string();
  const std::string empty = m_files.directory().writePrivate("empty.pem", "").string();

  expectFault([&] { make(text, m_key); }, text, "PEM");
  expectFault([&] { make(m_certificate, text); }, text, "PEM");
  expectFault([&] { make(empty, m_key); }, empty, "empty");
  expectFault([&] { make(m_certificate, empty); }, empty, "empty");
}

TEST_F(ServerTlsTest, NamesACertificateBehindWhichThereIsNone) {
  const std::string broken =
      m_files.directory()
          .writePrivate("broken.pem", test::readText(m_certificate) +
                                          "-----BEGIN CERTIFICATE-----\nno base 64\n"
                                          "-----END CERTIFICATE-----\n")
          .string();
  expectFault([&] { make(broken, m_key); }, broken, "PEM");
}

TEST_F(ServerTlsTest, NamesAnAuthorityInTheChainWhoseKeyIsTooShort) {
  expectFault([&] { make(m_files.weakChainFile(), m_key); }, m_files.weakChainFile(),
              "ca key too small");
}

TEST_F(ServerTlsTest, SendsTheChainBehindTheCertificate) {
  boost::asio::ssl::context context = makeServerTls(m_certificate, m_key);
  STACK_OF(X509)* chain = nullptr;
  ASSERT_EQ(SSL_CTX_get0_chain_certs(context.native_handle(), &chain), 1);
  EXPECT_EQ(sk_X509_num(chain), 1);
}

TEST_F(ServerTlsTest, DemandsAKeyThatNobodyElseCanRead) {
  const std::string key =
      m_files.directory().writePrivate("shared.key", test::readText(m_key)).string();
  EXPECT_NO_THROW(make(m_certificate, key));
  fs::permissions(key, fs::perms::group_read, fs::perm_options::add);
  EXPECT_THAT([&] { make(m_certificate, key); },
              test::ThrowsExactly<SetupFault>(
                  "The key '" + key +
                  "' can be read or changed by others than its owner; run: chmod 600 " + key));
}

TEST_F(ServerTlsTest, DemandsACertificateThatNobodyElseCanChange) {
  const std::string file =
      m_files.directory().writePrivate("shared.pem", test::readText(m_certificate)).string();
  fs::permissions(file, fs::perms::others_read, fs::perm_options::add);
  EXPECT_NO_THROW(make(file, m_key));
  fs::permissions(file, fs::perms::others_write, fs::perm_options::add);
  EXPECT_THAT([&] { make(file, m_key); },
              test::ThrowsExactly<SetupFault>(
                  "The certificate '" + file +
                  "' can be changed by others than its owner; run: chmod go-w " + file));
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
