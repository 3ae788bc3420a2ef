// The certificate of a server. Private to this folder.

#ifndef ORVEX_HTTP_SERVERTLS_H_
#define ORVEX_HTTP_SERVERTLS_H_

#include <boost/asio/ssl/context.hpp>
#include <string>

namespace http {

// Returns the settings for TLS 1.2 and later with a certificate (PEM, with its chain) and its key
// (PEM). The key is to be its owner's alone, the certificate nobody else's to write (see
// platform/Posix/PrivateFile.h). Never asks for a passphrase. Throws SetupFault, which names the
// file.
[[nodiscard]] boost::asio::ssl::context makeServerTls(const std::string& certificateFile,
                                                      const std::string& keyFile);

}  // namespace http

#endif  // ORVEX_HTTP_SERVERTLS_H_
