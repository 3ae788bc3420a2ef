#include "http/ServerTls.h"

#include <cerrno>
#include <fstream>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <system_error>

#include "http/ServerOptions.h"

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

void checkReadable(const std::string& file, const char* what, const char* setting) {
  if (file.empty()) {
    throw SetupFault(std::string("TLS needs a ") + what + ", and none is configured: set " +
                     setting + ".");
  }
  errno = 0;
  std::ifstream stream(file);
  if (!stream || stream.peek() == std::ifstream::traits_type::eof()) {
    const std::string reason =
        errno != 0 ? std::generic_category().message(errno) : "the file is empty";
    throw SetupFault(std::string("Cannot read the ") + what + " '" + file + "': " + reason + ".");
  }
}

void useCertificate(SSL_CTX* tls, const std::string& file) {
  if (SSL_CTX_use_certificate_chain_file(tls, file.c_str()) != 1) {
    throw SetupFault("Cannot use the certificate '" + file + "': " + takeReason() +
                     ". It has to be in PEM, the server's own certificate first, then its chain.");
  }
}

void useKey(SSL_CTX* tls, const std::string& file, const std::string& certificateFile) {
  bool isEncrypted = false;
  SSL_CTX_set_default_passwd_cb(tls, &notePassphraseWanted);
  SSL_CTX_set_default_passwd_cb_userdata(tls, &isEncrypted);
  const bool isUsed = SSL_CTX_use_PrivateKey_file(tls, file.c_str(), SSL_FILETYPE_PEM) == 1;
  SSL_CTX_set_default_passwd_cb_userdata(tls, nullptr);
  SSL_CTX_set_default_passwd_cb(tls, nullptr);
  if (isEncrypted) {
    ERR_clear_error();
    throw SetupFault("Cannot use the key '" + file +
                     "': it is encrypted, and a server has nobody to ask for a passphrase. Write "
                     "it unencrypted, readable by the server alone.");
  }
  const unsigned long fault = ERR_peek_error();
  if (!isUsed && ERR_GET_LIB(fault) == ERR_LIB_X509 &&
      ERR_GET_REASON(fault) == X509_R_KEY_VALUES_MISMATCH) {
    ERR_clear_error();
    throw SetupFault("The key '" + file + "' is not the key of the certificate '" +
                     certificateFile + "'.");
  }
  if (!isUsed) {
    throw SetupFault("Cannot use the key '" + file + "': " + takeReason() +
                     ". It has to be a private key in PEM.");
  }
  if (SSL_CTX_check_private_key(tls) != 1) {
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
  // OpenSSL has no words of its own for a file that cannot be opened.
  checkReadable(certificateFile, "certificate", "its file");
  checkReadable(keyFile, "key", "its file");
  ERR_clear_error();
  useCertificate(tls, certificateFile);
  useKey(tls, keyFile, certificateFile);
  return context;
}

}  // namespace http
