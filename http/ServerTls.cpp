#include "http/ServerTls.h"

#include <cstddef>
#include <memory>
#include <openssl/bio.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <system_error>

#include "http/ServerOptions.h"
#include "platform/Posix/PrivateFile.h"

namespace http {
namespace {

// Called where a key is encrypted: notes that, and offers no passphrase.
int notePassphraseWanted(char* /*buffer*/, int /*size*/, int /*isWriting*/, void* isWanted) {
  *static_cast<bool*>(isWanted) = true;
  return -1;
}

std::string takeReason() {
  const char* const reason = ERR_reason_error_string(ERR_peek_error());
  ERR_clear_error();
  return reason != nullptr ? reason : "no reason is known";
}

using Bio = std::unique_ptr<BIO, decltype(&BIO_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;
using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

// The content of a file, judged as it was read, so that nobody puts another file in its place in
// between. Its memory is wiped in the end.
class Pem {
 public:
  // `what` is for faults.
  Pem(const std::string& file, const char* what, platform::Privacy privacy)
      : m_content(read(file, what, privacy)) {}
  Pem(const Pem&) = delete;
  Pem& operator=(const Pem&) = delete;
  ~Pem() { OPENSSL_cleanse(m_content.data(), m_content.size()); }

  [[nodiscard]] Bio open() const {
    return {BIO_new_mem_buf(m_content.data(), static_cast<int>(m_content.size())), &BIO_free};
  }

 private:
  static std::string read(const std::string& file, const char* what, platform::Privacy privacy) {
    constexpr std::size_t kMostBytes = 1024UL * 1024UL;
    if (file.empty()) {
      throw SetupFault(std::string("TLS needs a ") + what +
                       ", and none is configured: set its file.");
    }
    const std::string unreadable = std::string("Cannot read the ") + what + " '" + file + "': ";
    try {
      std::string content = platform::readPrivateFile(file, privacy, kMostBytes).content;
      if (content.empty()) {
        throw SetupFault(unreadable + "the file is empty.");
      }
      return content;
    } catch (const platform::PrivateFileFault& fault) {
      if (fault.error() != 0) {
        throw SetupFault(unreadable + std::generic_category().message(fault.error()) + ".");
      }
      throw SetupFault(std::string("The ") + what + " " + fault.what());
    }
  }

  std::string m_content;
};

// Returns whether what was read last stopped at the end of the certificates.
bool isAtEnd() {
  const unsigned long fault = ERR_peek_last_error();
  return ERR_GET_LIB(fault) == ERR_LIB_PEM && ERR_GET_REASON(fault) == PEM_R_NO_START_LINE;
}

bool addCertificates(SSL_CTX* tls, const Pem& pem) {
  bool isEncrypted = false;
  const Bio bio = pem.open();
  const Certificate own(
      PEM_read_bio_X509_AUX(bio.get(), nullptr, &notePassphraseWanted, &isEncrypted), &X509_free);
  if (own == nullptr || SSL_CTX_use_certificate(tls, own.get()) != 1) {
    return false;
  }
  SSL_CTX_clear_chain_certs(tls);
  while (true) {
    const Certificate next(
        PEM_read_bio_X509(bio.get(), nullptr, &notePassphraseWanted, &isEncrypted), &X509_free);
    if (next == nullptr) {
      break;
    }
    if (SSL_CTX_add1_chain_cert(tls, next.get()) != 1) {
      return false;
    }
  }
  if (!isAtEnd()) {
    return false;
  }
  ERR_clear_error();
  return true;
}

void useCertificate(SSL_CTX* tls, const Pem& pem, const std::string& file) {
  if (!addCertificates(tls, pem)) {
    throw SetupFault("Cannot use the certificate '" + file + "': " + takeReason() +
                     ". It has to be in PEM, the server's own certificate first, then its chain.");
  }
}

void useKey(SSL_CTX* tls, const Pem& pem, const std::string& file,
            const std::string& certificateFile) {
  bool isEncrypted = false;
  const Bio bio = pem.open();
  const Key key(PEM_read_bio_PrivateKey(bio.get(), nullptr, &notePassphraseWanted, &isEncrypted),
                &EVP_PKEY_free);
  const bool isUsed = key != nullptr && SSL_CTX_use_PrivateKey(tls, key.get()) == 1;
  if (isEncrypted) {
    ERR_clear_error();
    throw SetupFault("Cannot use the key '" + file +
                     "': it is encrypted, and a server has nobody to ask for a passphrase. Write "
                     "it unencrypted, readable by the server alone.");
  }
  const unsigned long fault = ERR_peek_error();
  const bool isOther = !isUsed && ERR_GET_LIB(fault) == ERR_LIB_X509 &&
                       ERR_GET_REASON(fault) == X509_R_KEY_VALUES_MISMATCH;
  if (!isUsed && !isOther) {
    throw SetupFault("Cannot use the key '" + file + "': " + takeReason() +
                     ". It has to be a private key in PEM.");
  }
  if (isOther || SSL_CTX_check_private_key(tls) != 1) {
    ERR_clear_error();
    throw SetupFault("The key '" + file + "' is not the key of the certificate '" +
                     certificateFile + "'.");
  }
}

}  // namespace

boost::asio::ssl::context makeServerTls(const std::string& certificateFile,
                                        const std::string& keyFile) {
  boost::asio::ssl::context context(boost::asio::ssl::context::tls_server);
  SSL_CTX* const tls = context.native_handle();
  SSL_CTX_set_min_proto_version(tls, TLS1_2_VERSION);
  SSL_CTX_set_options(
      tls, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION | SSL_OP_CIPHER_SERVER_PREFERENCE);
  // An idle connection keeps no buffers, which are some 34 KiB.
  SSL_CTX_set_mode(tls, SSL_MODE_RELEASE_BUFFERS);
  const Pem certificate(certificateFile, "certificate", platform::Privacy::Unchanged);
  const Pem key(keyFile, "key", platform::Privacy::Secret);
  ERR_clear_error();
  useCertificate(tls, certificate, certificateFile);
  useKey(tls, key, keyFile, certificateFile);
  return context;
}

}  // namespace http
