// Certificates of a test's own, made with OpenSSL as it runs.

#ifndef ORVEX_TESTS_HTTP_CERTIFICATES_H_
#define ORVEX_TESTS_HTTP_CERTIFICATES_H_

#include <string>

#include "tests/support/TempDirectory.h"

namespace test {

// An authority, and servers whose certificates it signed. The files exist as long as the object.
// Throws std::runtime_error where OpenSSL fails.
class Certificates {
 public:
  Certificates();

  [[nodiscard]] std::string authorityFile() const { return file("authority.pem"); }
  // Of a server called localhost, at 127.0.0.1 and ::1; the file has the authority's behind it.
  [[nodiscard]] std::string certificateFile() const { return file("server.pem"); }
  [[nodiscard]] std::string keyFile() const { return file("server.key"); }
  // The same key, with a passphrase.
  [[nodiscard]] std::string encryptedKeyFile() const { return file("encrypted.key"); }
  // Of a server called elsewhere.example, with the key of keyFile().
  [[nodiscard]] std::string otherNameFile() const { return file("other-name.pem"); }
  // Was good for a day, two days ago.
  [[nodiscard]] std::string expiredFile() const { return file("expired.pem"); }
  // With an authority behind it whose key is too short to be trusted.
  [[nodiscard]] std::string weakChainFile() const { return file("weak-chain.pem"); }
  // An authority and a key that nobody else knows.
  [[nodiscard]] std::string strangerFile() const { return file("stranger.pem"); }
  [[nodiscard]] std::string strangerKeyFile() const { return file("stranger.key"); }

  [[nodiscard]] std::string file(const std::string& name) const {
    return (m_directory.path() / name).string();
  }
  [[nodiscard]] const TempDirectory& directory() const { return m_directory; }

 private:
  TempDirectory m_directory;
};

// Those that the tests of this process share.
[[nodiscard]] const Certificates& sharedCertificates();

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_CERTIFICATES_H_
